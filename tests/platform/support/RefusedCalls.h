#pragma once

#include <initializer_list>

/// From now on the calling thread, and whatever it starts, gets `error` as the result of these system
/// calls. There is no way back: call it in a process made for the purpose. Ends the process when the
/// kernel does not offer this.
void refuseSystemCalls(std::initializer_list<int> numbers, int error);
