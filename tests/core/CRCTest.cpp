#include "core/CRC.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "support/FreshProcess.h"
#include "support/TableMemory.h"
#include "wire/CRCDivision.h"

using System::CRC;
namespace CRCDivision = System::CRCDivision;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned int kUntouched = 0x5A5A5A5A;

std::array<std::uint32_t, 256> plainTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t entry = 0; entry < table.size(); ++entry) {
        std::uint32_t value = entry << 24;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x80000000) != 0 ? value << 1 ^ 0x04C11DB7 : value << 1;
        table[entry] = value;
    }
    return table;
}

/// The checksum one byte after the other: the first four bytes, inverted, are the register.
std::uint32_t plainChecksum(const unsigned char* data, std::size_t length) {
    static const std::array<std::uint32_t, 256> table = plainTable();
    std::uint32_t value = 0;
    for (std::size_t at = 0; at < 4; ++at)
        value = value << 8 | data[at];
    value = ~value;
    for (std::size_t at = 4; at < length; ++at)
        value = table[value >> 24] ^ (value << 8 | data[at]);
    return ~value;
}

std::uint32_t checksum(const unsigned char* data, std::size_t length) {
    unsigned int crc = kUntouched;
    EXPECT_EQ(CRC::calc(data, static_cast<unsigned int>(length), &crc), 0u);
    return crc;
}

std::uint32_t checksum(const Bytes& bytes) {
    return checksum(bytes.data(), bytes.size());
}

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

Bytes randomBytes(std::size_t size, unsigned int seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (unsigned char& byte : bytes)
        byte = static_cast<unsigned char>(random());
    return bytes;
}

/// Pages that may be read, with pages around them that may not.
class FencedPages {
public:
    explicit FencedPages(std::size_t pages) : m_page(static_cast<std::size_t>(::getpagesize())) {
        m_mapped = (pages + 2) * m_page;
        m_memory = static_cast<unsigned char*>(
            ::mmap(nullptr, m_mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (m_memory != MAP_FAILED)
            ::mprotect(begin(), pages * m_page, PROT_READ | PROT_WRITE);
    }
    ~FencedPages() { ::munmap(m_memory, m_mapped); }
    FencedPages(const FencedPages&) = delete;
    FencedPages& operator=(const FencedPages&) = delete;

    unsigned char* begin() { return m_memory + m_page; }
    unsigned char* end() { return m_memory + m_mapped - m_page; }

private:
    std::size_t m_page;
    std::size_t m_mapped;
    unsigned char* m_memory;
};

} // namespace

TEST(CRCTest, FourBytesAreTheirOwnChecksum) {
    EXPECT_EQ(checksum(Bytes{0x12, 0x34, 0x56, 0x78}), 0x12345678u);
    EXPECT_EQ(checksum(Bytes{0, 0, 0, 0}), 0u);
    EXPECT_EQ(checksum(Bytes{0xFF, 0xFF, 0xFF, 0xFF}), 0xFFFFFFFFu);
    EXPECT_EQ(checksum(Bytes{0x80, 0, 0, 0x01}), 0x80000001u);
}

TEST(CRCTest, FewerBytesAreTooFew) {
    const Bytes bytes = {1, 2, 3, 4};
    for (const unsigned int length : {0u, 1u, 2u, 3u}) {
        SCOPED_TRACE(length);
        unsigned int crc = kUntouched;
        EXPECT_EQ(CRC::calc(bytes.data(), length, &crc), 1024u);
        EXPECT_EQ(crc, kUntouched);
    }
    unsigned int crc = kUntouched;
    EXPECT_EQ(CRC::calc(nullptr, 0, &crc), 1024u);
}

TEST(CRCTest, EachBitCounts) {
    for (const std::size_t length : {4u, 11u, 12u, 13u, 33u}) {
        Bytes bytes = randomBytes(length, 6);
        const std::uint32_t before = checksum(bytes);
        for (std::size_t bit = 0; bit < length * 8; ++bit) {
            const auto mask = static_cast<unsigned char>(1 << bit % 8);
            bytes[bit / 8] ^= mask;
            EXPECT_NE(checksum(bytes), before) << length << " bytes, bit " << bit;
            bytes[bit / 8] ^= mask;
        }
    }
}

TEST(CRCTest, WithoutMemoryForItsTableThereIsNoChecksumUntilThereIs) {
    inFreshProcess([] {
        const Bytes bytes = bytesOf("123456789");
        const auto length = static_cast<unsigned int>(bytes.size());
        unsigned int crc = kUntouched;
        refuseTableMemory(true);
        EXPECT_EQ(CRC::calc(bytes.data(), length, &crc), 1026u);
        EXPECT_EQ(CRC::calc(bytes.data(), length, &crc), 1026u);
        EXPECT_EQ(CRC::calc(bytes.data(), 3, &crc), 1024u) << "what is too short needs no table";
        EXPECT_EQ(crc, kUntouched);
        refuseTableMemory(false);
        EXPECT_EQ(CRC::calc(bytes.data(), length, &crc), 0u);
        EXPECT_EQ(crc, 0x74527081u);
    });
}

TEST(CRCTest, TheTableIsBuiltOnce) {
    inFreshProcess([] {
        EXPECT_EQ(checksum(bytesOf("123456789")), 0x74527081u);
        refuseTableMemory(true);
        EXPECT_EQ(checksum(bytesOf("123456789")), 0x74527081u);
    });
}

namespace {

/// A way to the checksum.
struct Way {
    std::string name;
    std::uint32_t (*calculate)(const unsigned char* data, std::size_t length);
};

std::uint32_t portableChecksum(const unsigned char* data, std::size_t length) {
    static const std::vector<std::uint32_t> tables = [] {
        std::vector<std::uint32_t> filled(CRCDivision::kTables * CRCDivision::kTableEntries);
        CRCDivision::fillTables(filled.data());
        return filled;
    }();
    return CRCDivision::portable(tables.data(), data, length);
}

std::uint32_t libraryChecksum(const unsigned char* data, std::size_t length) {
    return CRCDivision::checksum(CRCDivision::libraryDivide, data, length);
}

/// All that this program was built with.
std::vector<Way> ways() {
    std::vector<Way> all = {{"calc", checksum}, {"portable", portableChecksum}};
    if (CRCDivision::libraryDivide != nullptr)
        all.push_back({"library", libraryChecksum});
    return all;
}

class CRCWaysTest : public testing::TestWithParam<Way> {
protected:
    static std::uint32_t calculated(const unsigned char* data, std::size_t length) {
        return GetParam().calculate(data, length);
    }
};

INSTANTIATE_TEST_SUITE_P(Each, CRCWaysTest, testing::ValuesIn(ways()),
                         [](const auto& info) { return info.param.name; });

TEST_P(CRCWaysTest, GivesTheKnownValues) {
    const Bytes digits = bytesOf("123456789");
    const Bytes zeros(4096, 0);
    Bytes inOrder(256);
    std::iota(inOrder.begin(), inOrder.end(), static_cast<unsigned char>(0));
    EXPECT_EQ(calculated(digits.data(), digits.size()), 0x74527081u);
    EXPECT_EQ(calculated(zeros.data(), zeros.size()), 0x9120DC06u);
    EXPECT_EQ(calculated(inOrder.data(), inOrder.size()), 0xB756E3A8u);
    EXPECT_EQ(calculated(inOrder.data(), 4), 0x00010203u);
}

TEST_P(CRCWaysTest, EveryLengthAtEveryAlignmentIsDividedInFull) {
    constexpr std::size_t kAlignments = 64;
    constexpr std::size_t kLongest = 600;
    const Bytes bytes = randomBytes(kAlignments + kLongest, 1);
    int wrong = 0;
    for (std::size_t start = 0; start < kAlignments; ++start)
        for (std::size_t length = 4; length <= kLongest; ++length)
            wrong +=
                calculated(bytes.data() + start, length) == plainChecksum(bytes.data() + start, length)
                    ? 0
                    : 1;
    EXPECT_EQ(wrong, 0);
}

TEST_P(CRCWaysTest, AMillionRangesAreDividedAsByteByByte) {
    constexpr int kRanges = 1'000'000;
    constexpr int kOneLongIn = 2'000;
    constexpr std::size_t kSize = 65536;
    const Bytes bytes = randomBytes(kSize, 4);
    std::mt19937 random(5);
    std::uniform_int_distribution<std::size_t> anyStart(0, kSize / 2);
    std::uniform_int_distribution<std::size_t> shortLength(4, 80);
    std::uniform_int_distribution<std::size_t> longLength(4, kSize / 2);
    int wrong = 0;
    for (int range = 0; range < kRanges; ++range) {
        const unsigned char* const start = bytes.data() + anyStart(random);
        const std::size_t length = range % kOneLongIn == 0 ? longLength(random) : shortLength(random);
        wrong += calculated(start, length) == plainChecksum(start, length) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
}

TEST_P(CRCWaysTest, NothingOutsideTheRangeIsRead) {
    constexpr std::size_t kLongest = 600;
    FencedPages pages(2);
    const Bytes content = randomBytes(static_cast<std::size_t>(pages.end() - pages.begin()), 7);
    std::memcpy(pages.begin(), content.data(), content.size());
    for (std::size_t length = 4; length <= kLongest; ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(calculated(pages.begin(), length), plainChecksum(content.data(), length));
        const std::size_t skipped = content.size() - length;
        EXPECT_EQ(calculated(pages.end() - length, length),
                  plainChecksum(content.data() + skipped, length));
    }
}

} // namespace
