#include "support/ShellFixture.h"

#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <utility>

#include "platform/Descriptors.h"

using System::Descriptor;

std::string contentOf(const Descriptor& file) {
    std::string content;
    char block[4096];
    for (;;) {
        const ssize_t count =
            ::pread(file.get(), block, sizeof block, static_cast<off_t>(content.size()));
        if (count <= 0)
            return content;
        content.append(block, static_cast<std::size_t>(count));
    }
}

ShellFixture::ShellFixture() {
    ::signal(SIGPIPE, SIG_IGN);
}

ShellRun ShellFixture::run(std::string_view text, std::chrono::nanoseconds limit) {
    const auto begin = std::chrono::steady_clock::now();
    const Descriptor output(::memfd_create("output", MFD_CLOEXEC));
    Descriptor readEnd;
    Descriptor writeEnd;
    EXPECT_TRUE(System::openPipe(readEnd, writeEnd));
    System::Shell shell;
    EXPECT_EQ(shell.start(readEnd.get(), output.get(), output.get()), 0);
    readEnd.reset();
    const System::ShellResult result = shell.feedAndWait(std::move(writeEnd), text, limit);
    const auto took = std::chrono::steady_clock::now() - begin;
    return {result, contentOf(output), std::chrono::duration_cast<std::chrono::milliseconds>(took)};
}

ShellRun ShellFixture::runIntoLimit(std::string_view text) {
    std::chrono::milliseconds limit{300};
    ShellRun last = run(text, limit);
    while (last.output.find("started\n") == std::string::npos && limit < kPromptly) {
        limit *= 2;
        last = run(text, limit);
    }
    return last;
}
