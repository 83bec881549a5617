#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <string_view>

#include "platform/Shell.h"
#include "wire/Descriptor.h"

/// What one shell did.
struct ShellRun {
    System::ShellResult result;
    std::string output; ///< standard output and standard error, in the order of their writing
    std::chrono::milliseconds took;
};

/// Runs shells the way the daemon does: text through a pipe, output into a file.
class ShellFixture : public ::testing::Test {
protected:
    static constexpr std::chrono::seconds kAmple{60};
    /// What "at once" may take on a machine that is busy with other things.
    static constexpr std::chrono::seconds kPromptly{30};

    ShellFixture();

    ShellRun run(std::string_view text, std::chrono::nanoseconds limit = kAmple);

    /// Runs a shell that will not end by itself into its limit. Makes sure that it had written "started"
    /// before: gives it more time until it had.
    ShellRun runIntoLimit(std::string_view text);
};

/// All that has been written to a file so far.
std::string contentOf(const System::Descriptor& file);
