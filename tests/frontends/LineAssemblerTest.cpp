#include "frontends/LineAssembler.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "support/Allocations.h"
#include "support/Rows.h"

namespace {

constexpr std::size_t kMebibyte = std::size_t{1} << 20;
const std::string kEnd = "\x03\n";

/// Feeds `line` in pieces of `size` bytes; tells after how many bytes it was complete, 0 for never.
std::size_t completedAfter(LineAssembler& assembler, const std::string& line, std::size_t size) {
    for (std::size_t at = 0; at < line.size(); at += size) {
        const std::string piece = line.substr(at, size);
        if (assembler.append(piece.data(), piece.size()))
            return at + piece.size();
    }
    return 0;
}

bool append(LineAssembler& assembler, const std::string& bytes) {
    return assembler.append(bytes.data(), bytes.size());
}

} // namespace

TEST(LineAssemblerTest, ALineMayBeSplitAtEveryByte) {
    const std::string line = "\x02status 01\x03\n";
    for (std::size_t split = 0; split < line.size(); ++split) {
        SCOPED_TRACE(split);
        LineAssembler assembler;
        EXPECT_FALSE(append(assembler, line.substr(0, split)));
        EXPECT_TRUE(append(assembler, line.substr(split)));
        EXPECT_EQ(assembler.line(), line);
    }
}

TEST(LineAssemblerTest, PiecesOfAnySizeMakeALine) {
    const std::string line = "\x02status 01\x03\n";
    for (std::size_t size = 1; size <= line.size() + 1; ++size) {
        SCOPED_TRACE(size);
        LineAssembler assembler;
        EXPECT_EQ(completedAfter(assembler, line, size), line.size());
        EXPECT_EQ(assembler.line(), line);
    }
}

TEST(LineAssemblerTest, OnlyAReadThatEndsOnEtxAndNewlineCompletesALine) {
    // Whether the last of the reads completes it; none does before.
    const Rows<const char*, std::vector<std::string>, bool> rows = {
        {"the end alone", {"\x03\n"}, true},
        {"nothing", {""}, false},
        {"a newline alone", {"\n"}, false},
        {"an ETX alone", {"\x03"}, false},
        {"a newline without ETX", {"\x02s\n"}, false},
        {"carriage return and newline", {"\x02s\x03\r\n"}, false},
        {"in the wrong order", {"\x02s\n\x03"}, false},
        {"a newline without ETX, then a whole end", {"\x02s\n", "\x03\n"}, true},
        {"ETX and newline in two reads", {"\x02s\x03", "\n"}, true},
        {"an end that is not the end of its read", {"\x02s\x03\nx"}, false},
        {"the same, completed later", {"\x02s\x03\nx", "y", "\x03\n"}, true},
        {"two lines in one read", {"\x02s\x03\n\x02t\x03\n"}, true},
        {"one and a half lines in one read", {"\x02s\x03\n\x02t"}, false},
        {"the same, completed later", {"\x02s\x03\n\x02t", "\x03\n"}, true},
        {"a zero byte", {std::string("\x02s\0\x03\n", 5)}, true},
    };
    for (const auto& [what, reads, complete] : rows) {
        SCOPED_TRACE(what);
        LineAssembler assembler;
        std::string all;
        for (std::size_t read = 0; read < reads.size(); ++read) {
            const bool isLast = read + 1 == reads.size();
            all += reads[read];
            EXPECT_EQ(append(assembler, reads[read]), isLast && complete);
            EXPECT_EQ(assembler.line(), all);
        }
    }
}

TEST(LineAssemblerTest, ALineMayBeLong) {
    const std::string line = "\x02" + std::string(3 * kMebibyte, 'x') + kEnd;
    LineAssembler assembler;
    EXPECT_EQ(completedAfter(assembler, line, 4096), line.size());
    EXPECT_EQ(assembler.line(), line);
}

TEST(LineAssemblerTest, BehindALineOfAnySizeThereIsRoom) {
    constexpr std::size_t kRoom = 2;
    for (std::size_t size = 0; size <= 1024; ++size) {
        LineAssembler assembler;
        const std::string text(size, 'x');
        append(assembler, text);
        assembler.data(kRoom)[size] = 'a';
        assembler.data(kRoom)[size + kRoom - 1] = 'b';
        EXPECT_EQ(assembler.line(), text);
        EXPECT_GE(assembler.capacity(), size + kRoom);
    }
}

TEST(LineAssemblerTest, ResetStartsTheNextLine) {
    LineAssembler assembler;
    EXPECT_TRUE(append(assembler, "\x02s" + kEnd));
    assembler.reset();
    EXPECT_EQ(assembler.line(), "");
    EXPECT_FALSE(append(assembler, "\n")) << "the ETX belonged to the line before";
    assembler.reset();
    EXPECT_TRUE(append(assembler, "\x02t" + kEnd));
    EXPECT_EQ(assembler.line(), "\x02t" + kEnd);
}

TEST(LineAssemblerTest, ResetGivesTheMemoryOfALongLineBack) {
    LineAssembler assembler;
    append(assembler, std::string(kMebibyte, 'x') + kEnd);
    ASSERT_GT(assembler.capacity(), kMebibyte);
    assembler.reset();
    EXPECT_LE(assembler.capacity(), 4096u);
}

TEST(LineAssemblerTest, ALineThatDoesNotFitIntoMemoryIsKeptAsFarAsItCame) {
    LineAssembler assembler;
    append(assembler, "\x02scripted");
    const std::string more(100000, 'x');
    {
        Allocations memory;
        memory.failAfter(0);
        EXPECT_THROW(append(assembler, more), std::bad_alloc);
    }
    EXPECT_EQ(assembler.line(), "\x02scripted");
    EXPECT_TRUE(append(assembler, more + kEnd));
    EXPECT_EQ(assembler.line(), "\x02scripted" + more + kEnd);
}
