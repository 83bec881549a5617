#pragma once

#include <string>
#include <vector>

#include "runtime/StatedThread.h"

/// A front end, as a command sees it: where output goes that a command makes while it still runs.
class AbstractListener : public StatedThread {
public:
    /// Sends a line of text; front ends of the binary protocol drop it. Called on the dispatcher's
    /// thread while the command that the front end delivered is running, or on the front end's own while
    /// that waits for its answer, never after. The text, which may be huge, may be used up by it.
    virtual void asyncSend(std::string& text) = 0;
    /// Sends a frame; front ends of the ASCII protocol drop it. Called as above.
    virtual void asyncSend(std::vector<unsigned char>& frame) = 0;
    /// The serial channel this front end talks over; 0 for the network.
    virtual int getDeviceListNumber() = 0;
};
