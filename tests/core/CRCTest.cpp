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

using System::CRC;

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

TEST(CRCTest, GivesTheKnownValues) {
    Bytes inOrder(256);
    std::iota(inOrder.begin(), inOrder.end(), static_cast<unsigned char>(0));
    EXPECT_EQ(checksum(bytesOf("123456789")), 0x74527081u);
    EXPECT_EQ(checksum(Bytes(4096, 0)), 0x9120DC06u);
    EXPECT_EQ(checksum(inOrder), 0xB756E3A8u);
}

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

TEST(CRCTest, EveryLengthIsDividedInFull) {
    for (const unsigned int seed : {1u, 2u, 3u}) {
        const Bytes bytes = randomBytes(64, seed);
        for (std::size_t length = 4; length <= bytes.size(); ++length)
            EXPECT_EQ(checksum(bytes.data(), length), plainChecksum(bytes.data(), length)) << length;
    }
}

TEST(CRCTest, AnyRangeAtAnyAlignmentIsDividedInFull) {
    const Bytes bytes = randomBytes(8192, 4);
    std::mt19937 random(5);
    std::uniform_int_distribution<std::size_t> anyStart(0, 4095);
    std::uniform_int_distribution<std::size_t> shortLength(4, 300);
    std::uniform_int_distribution<std::size_t> longLength(4, 4096);
    int wrong = 0;
    for (int range = 0; range < 100000; ++range) {
        const unsigned char* const start = bytes.data() + anyStart(random);
        const std::size_t length = range % 100 == 0 ? longLength(random) : shortLength(random);
        wrong += checksum(start, length) == plainChecksum(start, length) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
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

TEST(CRCTest, NothingOutsideTheRangeIsRead) {
    FencedPages pages(2);
    const Bytes content = randomBytes(static_cast<std::size_t>(pages.end() - pages.begin()), 7);
    std::memcpy(pages.begin(), content.data(), content.size());
    for (std::size_t length = 4; length <= 64; ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(checksum(pages.begin(), length), plainChecksum(content.data(), length));
        const std::size_t skipped = content.size() - length;
        EXPECT_EQ(checksum(pages.end() - length, length),
                  plainChecksum(content.data() + skipped, length));
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
