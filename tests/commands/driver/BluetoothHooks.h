#pragma once

// What the driver library calls in the program that has loaded it.
extern "C" {

/// With the table that it exports.
void bluetoothLoaded(void (**table)());
void bluetoothUnloaded();
int bluetoothOpen(const char* path, int flags);
int bluetoothClose(int handle);
int bluetoothRead(int handle, unsigned char* type, unsigned char** data, int* length);
int bluetoothWrite(int handle, int type, const void* data, int length);
/// A thread begins a read or a write, and is about to leave it.
void bluetoothEnters();
void bluetoothLeaves();
}
