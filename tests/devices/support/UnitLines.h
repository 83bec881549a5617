#pragma once

#include <gmock/gmock.h>

#include <string>

#include "devices/CommHandler.h"
#include "support/DeviceCalls.h"
#include "support/ErrorOutput.h"
#include "support/Line.h"
#include "support/Results.h"

/// The four channels of a simulated unit, each with a line of the test's behind its device node, and a
/// manager that is switched on. Fails where there is no unit, before it can do harm.
class UnitLines : public ::testing::Test {
protected:
    static constexpr unsigned kChannels = 4;

    UnitLines();

    Comm::Handle& channel(unsigned number);

    /// Opens the channel with ordinary settings and forgets the calls that this took.
    Comm::Handle& openChannel(unsigned number);

    DeviceCalls m_calls;
    Line m_lines[kChannels];
    Comm m_comm;
};
