#pragma once

/// While true, there is no memory for arrays that are asked for with `std::nothrow`, as the checksum's
/// table is.
void refuseTableMemory(bool refused);
