#pragma once

/// While true, there is no memory for unpacking a picture.
void refusePictureMemory(bool refused);

/// There is no room in the environment for the variable of this name; null: there is for all.
void refuseVariable(const char* name);
