#pragma once

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>

#include "devices/CommFSerial.h"
#include "devices/CommSerial.h"
#include "support/DeviceCalls.h"
#include "support/Line.h"
#include "support/Results.h"

struct DriverKind {
    const char* name;
    std::unique_ptr<SerialLine> (*make)();
};

inline const DriverKind kDescriptorDriver = {
    "CommSerial", []() -> std::unique_ptr<SerialLine> { return std::make_unique<CommSerial>(); }};
inline const DriverKind kStreamDriver = {
    "CommFSerial", []() -> std::unique_ptr<SerialLine> { return std::make_unique<CommFSerial>(); }};

inline void PrintTo(const DriverKind& kind, std::ostream* out) {
    *out << kind.name;
}

/// Longer than anything here takes.
constexpr unsigned kLongMs = 60000;

/// A driver of either kind, closed, and a line for it.
class DriverFixture : public ::testing::TestWithParam<DriverKind> {
protected:
    bool usesStream() const { return GetParam().name == std::string("CommFSerial"); }

    DeviceResult openDriver(unsigned baud = 115200) {
        return m_driver->open(m_line.path(), baud, 8, 1, CommInterface::None);
    }

    /// Opens the driver with ordinary settings and forgets the calls that this took.
    void open() {
        ASSERT_THAT(openDriver(), isSuccess());
        m_calls.forget();
    }

    bool isOpen() {
        bool fromTrue = true;
        bool fromFalse = false;
        EXPECT_THAT(m_driver->isOpen(fromTrue), isSuccess());
        EXPECT_THAT(m_driver->isOpen(fromFalse), isSuccess());
        EXPECT_EQ(fromTrue, fromFalse);
        return fromTrue;
    }

    /// The text for a system call that failed on the line.
    std::string textFor(const std::string& lead, int error) const {
        return lead + m_line.path() + ": " + std::strerror(error);
    }

    DeviceCalls m_calls;
    Line m_line;
    std::unique_ptr<SerialLine> m_driver = GetParam().make();
};

/// Runs every case of `fixture` with both drivers.
#define WITH_BOTH_DRIVERS(fixture)                                                                  \
    INSTANTIATE_TEST_SUITE_P(Drivers, fixture, ::testing::Values(kDescriptorDriver, kStreamDriver), \
                             [](const auto& info) { return std::string(info.param.name); })
