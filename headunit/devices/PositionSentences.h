#pragma once

#include <ctime>
#include <string>

namespace headunit {

/// A place on the earth in decimal degrees: north and east are positive.
struct Position {
    double latitude = 0;
    double longitude = 0;
};

/// Whether the latitude is within 90 degrees and the longitude within 180.
bool isOnEarth(const Position& position);

/// What a receiver says once a second (NMEA 0183): a $GPGGA and a $GPRMC sentence of a valid fix at the
/// position, at rest, with their checksums, each ended by CR LF. `time` counts seconds since 1970 UTC.
std::string positionSentences(const Position& position, std::time_t time);

} // namespace headunit
