#include <limits>

#include "TransferTest.h"
#include "support/TestBytes.h"
#include "transfer/Checksum.h"
#include "transfer/MemoryMover.h"

namespace station {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint64_t kEnd = kBufferSize - 1; // what is transferred ends here at the latest

class MemoryTransfer : public TransferTest {
protected:
    Order upload(const std::string& bytes, std::uint64_t offset = 0) const {
        Order order = this->order(Order::Kind::Upload, fileOf(bytes));
        order.offset = offset;
        return order;
    }

    Order download(std::uint64_t offset, std::uint64_t length) const {
        Order order = this->order(Order::Kind::Download, path("target"));
        order.offset = offset;
        order.length = length;
        return order;
    }
};

TEST_F(MemoryTransfer, CutsAFileIntoRequests) {
    const std::string bytes = variedBytes(245);
    run(upload(bytes, 100));
    unsigned sum = 0;
    for (const char byte : bytes.substr(0, 244))
        sum += static_cast<unsigned char>(byte);
    EXPECT_THAT(session.requests(),
                ElementsAre("memory write 8bitcrc 244 100 DATA " + std::to_string(sum % 256),
                            "memory write 8bitcrc 1 344 DATA " +
                                std::to_string(static_cast<unsigned char>(bytes.back())),
                            "diag cksum 0 100 245"));
    EXPECT_EQ(session.bufferBytes(99, 247), '\0' + bytes + '\0');
    EXPECT_EQ(figures.done, 245U);
    EXPECT_EQ(figures.checksum, checksumOf(bytes));
}

TEST_F(MemoryTransfer, FetchesAFileInRequests) {
    const std::string bytes = variedBytes(245);
    run(upload(bytes, 100));
    const std::size_t before = session.requests().size();
    run(download(100, 245));
    const std::vector<std::string> requests(session.requests().begin() + static_cast<long>(before),
                                            session.requests().end());
    EXPECT_THAT(requests, ElementsAre("memory read 8bitcrc 244 100", "memory read 8bitcrc 1 344",
                                      "diag cksum 0 100 245"));
    EXPECT_EQ(contentOf(path("target")), bytes);
    EXPECT_FALSE(exists(path("target.part")));
    EXPECT_EQ(figures.checksum, checksumOf(bytes));
}

TEST_F(MemoryTransfer, ReadsBackWhatIsTooShortForAChecksum) {
    run(upload("abc"));
    EXPECT_THAT(session.requests(), ElementsAre("memory write 8bitcrc 3 0 DATA 38", // 0x61 + 0x62 + 0x63
                                                "memory read 8bitcrc 3 0"));
    EXPECT_EQ(figures.checksum, std::nullopt);
    run(download(0, 3));
    EXPECT_EQ(session.count("memory read 8bitcrc 3 0"), 3U);
    EXPECT_EQ(contentOf(path("target")), "abc");
}

TEST_F(MemoryTransfer, BringsEachSizeThereAndBack) {
    constexpr std::size_t kSlice = MemoryMover::kMostSliceBytes;
    for (const std::size_t size : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{4},
                                   std::size_t{243}, std::size_t{244}, std::size_t{245}, kSlice - 1,
                                   kSlice, kSlice + 1, kSlice + 3, kSlice + 4, 2 * kSlice}) {
        SCOPED_TRACE(size);
        const std::string bytes = variedBytes(size);
        run(upload(bytes, kEnd - size));
        EXPECT_EQ(figures.done, size);
        run(download(kEnd - size, size));
        EXPECT_TRUE(contentOf(path("target")) == bytes);
        EXPECT_EQ(figures.retries, 0U);
    }
}

TEST_F(MemoryTransfer, HasSeveralRequestsUnderWayWhereThatWorks) {
    session.width = 4;
    for (const std::size_t requests : {1U, 3U, 4U, 5U, 300U}) {
        SCOPED_TRACE(requests);
        const std::string bytes = variedBytes(requests * kMostRequestBytes - 1);
        run(upload(bytes, 7));
        EXPECT_TRUE(session.bufferBytes(7, bytes.size()) == bytes);
        run(download(7, bytes.size()));
        EXPECT_TRUE(contentOf(path("target")) == bytes);
        EXPECT_TRUE(session.isIdle());
    }
    EXPECT_EQ(session.mostUnderWay(), 4U);
}

TEST_F(MemoryTransfer, ChecksSeveralSlicesAsAWhole) {
    const std::size_t size = MemoryMover::kMostSliceBytes + 10;
    run(upload(variedBytes(size), 7));
    EXPECT_EQ(session.requests().back(), "diag cksum 0 7 " + std::to_string(size));
    EXPECT_EQ(session.count("diag"), 3U);
}

TEST_F(MemoryTransfer, RefusesWhatDoesNotFitWithoutARequest) {
    EXPECT_THAT(failureOf<Failure>(upload("12345", kEnd - 4)), HasSubstr("do not fit"));
    EXPECT_THAT(failureOf<Failure>(upload("1", kEnd)), HasSubstr("do not fit"));
    EXPECT_THAT(failureOf<Failure>(upload("1", std::numeric_limits<std::uint64_t>::max())),
                HasSubstr("do not fit"));
    EXPECT_THAT(failureOf<Failure>(download(1, std::numeric_limits<std::uint64_t>::max())),
                HasSubstr("do not fit"));
    EXPECT_THAT(failureOf<Failure>(download(0, kBufferSize)), HasSubstr("do not fit"));
    EXPECT_THAT(failureOf<Failure>(download(5, 0)), HasSubstr("nothing to transfer"));
    EXPECT_TRUE(session.requests().empty());
}

TEST_F(MemoryTransfer, RefusesFilesThatCannotBeUsedWithoutARequest) {
    EXPECT_THAT(failureOf<Failure>(order(Order::Kind::Upload, path("none"))), HasSubstr("No such file"));
    EXPECT_THAT(failureOf<Failure>(order(Order::Kind::Upload, path(""))), HasSubstr("regular file"));
    EXPECT_THAT(failureOf<Failure>(upload("")), HasSubstr("the file is empty"));
    Order toNowhere = download(0, 10);
    toNowhere.file = path("none/target");
    EXPECT_THAT(failureOf<Failure>(toNowhere), HasSubstr("No such file"));
    toNowhere.file = "/dev/null";
    EXPECT_THAT(failureOf<Failure>(toNowhere), HasSubstr("not a regular file"));
    EXPECT_TRUE(session.requests().empty());
}

} // namespace
} // namespace station
