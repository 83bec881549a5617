#include "client/RequestFrame.h"

#include "client/Failure.h"
#include "wire/Frame.h"

namespace station {

std::string requestFrame(unsigned char id, std::string_view rest) {
    const std::size_t length = wire::kRequestHeader + rest.size();
    if (length > wire::kLongestFrame)
        throw Failure(Failure::Kind::InvalidRequest, "a request of " + std::to_string(length) +
                                                         " bytes does not fit in a frame of " +
                                                         std::to_string(wire::kLongestFrame));
    std::string frame;
    frame += static_cast<char>(length);
    frame += static_cast<char>(id);
    frame += rest;
    return frame;
}

} // namespace station
