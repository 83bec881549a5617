#include <gtest/gtest.h>

#include <cstdlib>

#include "core/AbstractCmd.h"
#include "support/FreshProcess.h"
#include "support/ScriptedCommand.h"

namespace {

constexpr std::size_t kScratchBytes = 134217728;

bool s_scratchMemoryIsThere = true;
int s_scratchAllocations = 0;
const void* s_scratch = nullptr;
int s_scratchReleases = 0;

} // namespace

extern "C" {

void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (count * size != kScratchBytes)
        return __real_calloc(count, size);
    ++s_scratchAllocations;
    void* const memory = s_scratchMemoryIsThere ? __real_calloc(count, size) : nullptr;
    s_scratch = memory;
    return memory;
}

void __real_free(void* memory);
void __wrap_free(void* memory) {
    if (memory != nullptr && memory == s_scratch)
        ++s_scratchReleases;
    __real_free(memory);
}

} // extern "C"

// The buffer is made once per process and its state
// shows: each case looks at it in a process of its own.

TEST(ScratchBufferTest, IsMadeOnFirstUseAndHandedOutEverAfter) {
    inFreshProcess([] {
        ScriptedCommand::make('x', "x");
        EXPECT_EQ(s_scratchAllocations, 0);
        unsigned char* const buffer = AbstractCmd::getGlobalBuffer();
        EXPECT_NE(buffer, nullptr);
        EXPECT_EQ(AbstractCmd::getGlobalBuffer(), buffer);
        EXPECT_EQ(AbstractCmd::getGlobalBufferSize(), 0x8000000u);
        EXPECT_EQ(s_scratchAllocations, 1);
    });
}

TEST(ScratchBufferTest, AskingForItsSizeMakesIt) {
    inFreshProcess([] {
        EXPECT_EQ(AbstractCmd::getGlobalBufferSize(), 134217728u);
        EXPECT_EQ(s_scratchAllocations, 1);
    });
}

TEST(ScratchBufferTest, IsZeroedAndKeepsWhatIsWritten) {
    inFreshProcess([] {
        unsigned char* const buffer = AbstractCmd::getGlobalBuffer();
        int bytesSet = buffer[kScratchBytes - 1] != 0 ? 1 : 0;
        // One byte of each page: reading all of it would only heat the room.
        for (std::size_t at = 0; at < kScratchBytes; at += 4096)
            bytesSet += buffer[at] != 0 ? 1 : 0;
        EXPECT_EQ(bytesSet, 0);
        buffer[kScratchBytes - 1] = 0x5A;
        AbstractCmd::createGlobalBuffer();
        EXPECT_EQ(AbstractCmd::getGlobalBuffer()[kScratchBytes - 1], 0x5A);
    });
}

TEST(ScratchBufferTest, WithoutMemoryThereIsNoneUntilThereIs) {
    inFreshProcess([] {
        s_scratchMemoryIsThere = false;
        AbstractCmd::createGlobalBuffer();
        EXPECT_EQ(AbstractCmd::getGlobalBuffer(), nullptr);
        EXPECT_EQ(AbstractCmd::getGlobalBufferSize(), 0u);
        s_scratchMemoryIsThere = true;
        EXPECT_EQ(AbstractCmd::getGlobalBufferSize(), 0x8000000u);
        EXPECT_NE(AbstractCmd::getGlobalBuffer(), nullptr);
    });
}

TEST(ScratchBufferTest, IsReleasedWithACommandAndNotForgotten) {
    inFreshProcess([] {
        ScriptedCommand* const command = &ScriptedCommand::make('x', "x");
        const unsigned char* const buffer = AbstractCmd::getGlobalBuffer();
        EXPECT_NE(buffer, nullptr);
        delete command;
        EXPECT_EQ(s_scratchReleases, 1);
        EXPECT_EQ(AbstractCmd::getGlobalBuffer(), buffer);
    });
}

TEST(ScratchBufferTest, IsMadeForTheCommandThatReleasesIt) {
    inFreshProcess([] {
        delete &ScriptedCommand::make('x', "x");
        EXPECT_EQ(s_scratchAllocations, 1);
        EXPECT_EQ(s_scratchReleases, 1);
    });
}
