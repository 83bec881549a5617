#include "client/Link.h"

#include "client/Failure.h"

namespace station {

std::string Link::receive(const Deadline& deadline) {
    if (!deadline.expired())
        if (auto bytes = receiveBy(deadline))
            return *std::move(bytes);
    failWithoutAnswer();
}

void failWithoutAnswer() {
    throw Failure(Failure::Kind::TimedOut, "time-out while waiting for the answer");
}

} // namespace station
