#pragma once

#include <cstddef>

/// The version of the production test protocol.
unsigned int getProductionVersion();

/// The time of this build as "yyyy/mm/dd hh:mm:ss", the day padded with a blank. The same pointer on
/// every call. The first call must be made before other threads exist.
const char* getDateTimeString();

/// Writes the stamp of a build made at `date` ("Mmm dd yyyy", the compiler's form) and `time`
/// ("hh:mm:ss"). An unknown month gives "00". Texts shorter than that form give an empty stamp.
void formatBuildStamp(const char* date, const char* time, char* stamp, std::size_t size);
