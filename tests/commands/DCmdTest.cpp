#include "commands/DCmd.h"

#include "support/ScratchFixture.h"
#include "support/TableMemory.h"

using ::testing::ElementsAre;

namespace {

constexpr unsigned int kAddressError = 0x0B000001;
constexpr unsigned int kSizeError = 0x0B000002;

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kInvalidSubCommand[] = "Invalid subcommand";
constexpr char kUnexpected[] = "Unexpected byte at position D2 of 'D' command, '9' expected";
constexpr char kAddressTooLarge[] = "memory address too large";
constexpr char kSizeTooLarge[] = "size parameter too large";
constexpr char kSumTooLarge[] = "offset + size exceed allocated memory size";
constexpr char kTooSmall[] = "length paramater too small";
constexpr char kSegmented[] = "segmented memory type (1) not implemented";

Bytes request(unsigned char type, unsigned int offset, unsigned int length) {
    return joined(joined({12, 'D', 9, type}, bigEndian(offset)), bigEndian(length));
}

Tokens line(const std::string& type, const std::string& offset, const std::string& length) {
    return tokens({"diag", "cksum", type, offset, length});
}

class DCmdTest : public CommandTest<DCmd, ScratchFixture> {
protected:
    void expectChecksum(const Bytes& frame, unsigned int checksum) {
        expectResponse(frame, bigEndian(checksum));
        expectDone(frame, bigEndian(checksum));
    }

    void expectChecksum(const Tokens& list, const std::string& base64) {
        expectResponse(list, "cksum base64(" + base64 + ")");
        expectAnswer(list, "diag cksum base64(" + base64 + ")");
    }
};

Bytes digits() {
    return {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
}

Bytes inOrder() {
    Bytes bytes(256);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<unsigned char>(at);
    return bytes;
}

} // namespace

TEST_F(DCmdTest, AnswersTheChecksumOfARange) {
    const Rows<Bytes, unsigned int, unsigned int, const char*> rows = {
        {digits(), 0, 0x74527081, "dFJwgQ=="},
        {digits(), 3, 0x74527081, "dFJwgQ=="},
        {digits(), kScratchBytes - 10, 0x74527081, "dFJwgQ=="},
        {Bytes(4096, 0), 0x100000, 0x9120DC06, "kSDcBg=="},
        {inOrder(), 64, 0xB756E3A8, "t1bjqA=="},
        {{0x12, 0x34, 0x56, 0x78}, 1, 0x12345678, "EjRWeA=="},
        {{0xFF, 0xFF, 0xFF, 0xFF}, kScratchBytes - 5, 0xFFFFFFFF, "/////w=="},
        {{0, 0, 0, 0}, 0, 0, "AAAAAA=="},
    };
    for (const auto& [content, offset, checksum, base64] : rows) {
        const auto length = static_cast<unsigned int>(content.size());
        SCOPED_TRACE(string_format("%u bytes at %u", length, offset));
        store(offset, content);
        expectChecksum(request(0, offset, length), checksum);
        expectChecksum(line("0", std::to_string(offset), std::to_string(length)), base64);
    }
}

TEST_F(DCmdTest, ChecksumsAllZeroBytesThatCanBeReached) {
    inFreshProcess([] {
        store(0, Bytes(kPrepared));
        store(kScratchBytes - kPrepared, Bytes(kPrepared));
        expectResponse(request(0, 0, kScratchBytes - 1), {0xE1, 0xDF, 0x95, 0x42});
    });
}

TEST_F(DCmdTest, NumbersInALineMayBeWrittenInThreeWays) {
    store(16, digits());
    for (const char* offset : {"16", "0x10", "020", "+16"})
        expectChecksum(line("0", offset, "9"), "dFJwgQ==");
    for (const char* length : {"9", "0x9", "011"})
        expectChecksum(line("0", "16", length), "dFJwgQ==");
    for (const char* type : {"0", "0x100", "256", "-256", "x", ""})
        expectChecksum(line(type, "16", "9"), "dFJwgQ==");
    store(0, digits());
    expectChecksum(line("0", "x", "9"), "dFJwgQ==");
}

TEST_F(DCmdTest, TheSubCommandBeginsWithItsWord) {
    store(0, digits());
    for (const char* word : {"cksum", "cksums", "cksum32"}) {
        SCOPED_TRACE(word);
        expectChecksum(tokens({"diag", word, "0", "0", "9"}), "dFJwgQ==");
    }
    expectChecksum(
        {token("diag"), dataToken({'c', 'k', 's', 'u', 'm'}), token("0"), token("0"), dataToken({'9'})},
        "dFJwgQ==");
    for (const char* word : {"", "cksu", "Cksum", "CKSUM", " cksum", "sum", "%s"})
        expectRefused(tokens({"diag", word, "0", "0", "9"}), kGenericError, kInvalidSubCommand);
    expectRefused({token("diag"), {}, token("0"), token("0"), token("9")}, kGenericError,
                  kInvalidSubCommand);
}

TEST_F(DCmdTest, RefusesRangesThatAreNotInTheBuffer) {
    const unsigned int size = kScratchBytes;
    const Rows<unsigned char, unsigned int, unsigned int, unsigned int, const char*> rows = {
        {1, 0, 9, kGenericError, kSegmented},
        {1, ~0U, ~0U, kGenericError, kSegmented},
        {2, 0, 9, kGenericError, "unknown memory type 2"},
        {128, ~0U, ~0U, kGenericError, "unknown memory type 128"},
        {255, 0, 0, kGenericError, "unknown memory type 255"},
        {0, size, 4, kAddressError, kAddressTooLarge},
        {0, size, size, kAddressError, kAddressTooLarge},
        {0, 0x7FFFFFFF, 4, kAddressError, kAddressTooLarge},
        {0, 0x80000000, 4, kAddressError, kAddressTooLarge},
        {0, 0xFFFFFFFC, 4, kAddressError, kAddressTooLarge},
        {0, 0xFFFFFFFF, 0xFFFFFFFF, kAddressError, kAddressTooLarge},
        {0, 0, size, kSizeError, kSizeTooLarge},
        {0, size - 1, size, kSizeError, kSizeTooLarge},
        {0, 4, 0x80000000, kSizeError, kSizeTooLarge},
        {0, 4, 0xFFFFFFFC, kSizeError, kSizeTooLarge},
        {0, 4, 0xFFFFFFFF, kSizeError, kSizeTooLarge},
        {0, size - 4, 4, kSizeError, kSumTooLarge},
        {0, 1, size - 1, kSizeError, kSumTooLarge},
        {0, size - 1, size - 1, kSizeError, kSumTooLarge},
        {0, size - 1, 1, kSizeError, kSumTooLarge},
        {0, 0, 0, kSizeError, kTooSmall},
        {0, 0, 3, kSizeError, kTooSmall},
        {0, size - 4, 3, kSizeError, kTooSmall},
        {0, size - 1, 0, kSizeError, kTooSmall},
    };
    for (const auto& [type, offset, length, code, text] : rows) {
        expectRefused(request(type, offset, length), code, text);
        expectRefused(
            line(std::to_string(type), string_format("0x%X", offset), string_format("0x%X", length)),
            code, text);
    }
    expectRefused(line("0", "-4", "4"), kAddressError, kAddressTooLarge);
    expectRefused(line("0", "4", "-4"), kSizeError, kSizeTooLarge);
    expectRefused(line("0", "0x100000000", "4"), kAddressError, kAddressTooLarge);
    expectRefused(line("0", "0", "0x100000004"), kSizeError, kSizeTooLarge);
    expectRefused(line("0x100000000", "0", "9"), kGenericError, "unknown memory type 255");
    expectRefused(line("-1", "0", "9"), kGenericError, "unknown memory type 255");
    expectRefused(line("257", "0", "9"), kGenericError, kSegmented);
    expectRefused(line("0", "0", "x"), kSizeError, kTooSmall);
}

TEST_F(DCmdTest, RefusesFramesOfAnotherKind) {
    expectRefused({4, 'D', 8, 0}, kGenericError, kUnexpected);
    expectRefused({4, 'D', '9', 0}, kGenericError, kUnexpected);
    expectRefused({12, 'D', 0, 0, 0, 0, 0, 0, 0, 0, 0, 9}, kGenericError, kUnexpected);
    expectRefused({12, 'D', 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 9}, kGenericError, kUnexpected);
    expectRefused({4, 'D', 9, 0}, kGenericError, kInvalidLength);
    expectRefused({11, 'D', 9, 0, 0, 0, 0, 0, 0, 0, 0}, kGenericError, kInvalidLength);
    expectRefused({13, 'D', 9, 0, 0, 0, 0, 0, 0, 0, 0, 9, 0}, kGenericError, kInvalidLength);
}

TEST_F(DCmdTest, RefusesFramesTooShortToBeAnswered) {
    expectRefused(Bytes{2, 'D'}, kGenericError, kUnexpected);
    expectNothingRefused(kGenericError, kUnexpected);
    expectRefused(Bytes{3, 'D', 9}, kGenericError, kInvalidLength);
}

TEST_F(DCmdTest, TakesExactlyFiveTokens) {
    expectRefused(tokens({"diag"}), kGenericError, kInvalidLength);
    expectRefused(tokens({"diag", "cksum", "0", "0"}), kGenericError, kInvalidLength);
    expectRefused(tokens({"diag", "cksum", "0", "0", "9", "9"}), kGenericError, kInvalidLength);
    expectRefused(tokens({"diag", "wrong", "0", "0"}), kGenericError, kInvalidLength);
    expectRefused(Tokens{}, kGenericError, kInvalidLength);
}

TEST_F(DCmdTest, PutsTheChecksumIntoFourBytes) {
    store(0, {0x12, 0x34, 0x56, 0x78});
    Bytes result(4, 0x5A);
    const Response refused(command().processData(0, 0, 3, result));
    expectError(refused, kSizeError, kTooSmall);
    EXPECT_EQ(result, Bytes(4, 0x5A));
    EXPECT_EQ(Response(command().processData(0, 0, 4, result))->code, 0u);
    EXPECT_THAT(result, ElementsAre(0x12, 0x34, 0x56, 0x78));
}

TEST_F(DCmdTest, WithoutMemoryForTheTableThereIsNoChecksumUntilThereIs) {
    inFreshProcess([] {
        store(0, digits());
        refuseTableMemory(true);
        expectError(run(request(0, 0, 9)), kSizeError, "Memory allocation failure");
        expectError(run(line("0", "0", "9")), kSizeError, "Memory allocation failure");
        expectError(run(request(0, 0, 3)), kSizeError, kTooSmall);
        refuseTableMemory(false);
        expectResponse(line("0", "0", "9"), "cksum base64(dFJwgQ==)");
    });
}

TEST(DCmdWithoutBufferTest, EveryRangeIsRefusedUntilThereIsMemory) {
    inFreshProcess([] {
        refuseScratchMemory(true);
        for (const Bytes& frame : {request(0, 0, 9), request(1, 0, 0), request(9, ~0U, ~0U)})
            expectError(runRequest(*DCmd::getInstance(), frame), kAddressError,
                        "no memory available to calculate CRC over");
        refuseScratchMemory(false);
        expectSuccess(*runRequest(*DCmd::getInstance(), line("0", "0", "4")), "cksum base64(AAAAAA==)");
    });
}
