#include "BlockTransferTest.h"

namespace station {
namespace {

class BlockTransferFailure : public BlockTransferTest {
protected:
    /// The number that such a request would have in a transfer that succeeds.
    std::size_t numberOf(const Order& order, const std::string& opening) {
        const auto before = static_cast<long>(session.requests().size());
        run(order);
        const auto begin = session.requests().begin() + before;
        const auto end = session.requests().end();
        const auto found = std::find_if(begin, end, [&](const std::string& request) {
            return request.compare(0, opening.size(), opening) == 0;
        });
        EXPECT_NE(found, end);
        session.device = m_content;
        return static_cast<std::size_t>(found - begin) + 1;
    }

    /// The number of such a request in the next run.
    std::size_t next(const Order& order, const std::string& opening) {
        const std::size_t number = numberOf(order, opening);
        return session.requests().size() + number;
    }
};

TEST_F(BlockTransferFailure, WritesAgainWhatReadsBackOtherwise) {
    const std::string bytes(kBlock + 5, 'n');
    falsify("diag cksum 0 67108864 ", 1);
    run(flash(bytes, 2));
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_EQ(session.count("blockdev write 180 1 2 2 0"), 2U);
    EXPECT_TRUE(session.device == contentWith(bytes, 2));
}

TEST_F(BlockTransferFailure, KeepsTheRestOfTheLastBlockAlsoWhenItsWriteWasDamaged) {
    const std::string bytes(kBlock + 5, 'n');
    bool isDamaged = false;
    session.after = [&](const std::string& request, Answer&) {
        if (!isDamaged && request == "blockdev write 180 1 2 2 0") {
            isDamaged = true;
            session.device[4 * kBlock - 1] ^= 1;
        }
    };
    run(flash(bytes, 2));
    EXPECT_TRUE(isDamaged);
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_TRUE(session.device == contentWith(bytes, 2));
}

TEST_F(BlockTransferFailure, NamesTheBlocksThatAlwaysReadBackOtherwise) {
    falsify("diag cksum 0 67108864 ", 1000);
    EXPECT_THAT(failureOf<Unverified>(flash(std::string(2 * kBlock, 'n'), 2)),
                AllOf(HasSubstr("blocks 2 to 3"), HasSubstr("after 4 attempts")));
    EXPECT_THAT(leftover(), HasSubstr("the device is incomplete: of blocks 2 to 3 the first 0 are"));
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransferFailure, NamesTheSliceOfADumpThatAlwaysDiffers) {
    falsify("diag cksum 0 0 ", 1000);
    EXPECT_THAT(failureOf<Unverified>(dump()), HasSubstr("bytes 0 to 19967 of the unit's scratch"));
    EXPECT_EQ(session.count("diag"), 4U);
    EXPECT_FALSE(exists(path("target")));
    EXPECT_FALSE(exists(path("target.part")));
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransferFailure, SaysThatTheDeviceMayStayOpenWhenTheLinkIsCut) {
    const Order order = flash(std::string(2 * kBlock, 'n'), 2);
    for (const char* at : {"blockdev open", "blockdev read", "memory write", "diag"}) {
        SCOPED_TRACE(at);
        cutAt(next(order, at));
        notes.clear();
        EXPECT_EQ(failureOf<Failure>(order), "cut");
        EXPECT_THAT(notes, ElementsAre("the device may still be open in the unit: cut"));
        EXPECT_EQ(leftover(), "nothing was written to the device");
        EXPECT_TRUE(session.device == m_content);
        session.before = {};
    }
    cutAt(next(order, "blockdev write 180 1 2 2"));
    EXPECT_EQ(failureOf<Failure>(order), "cut");
    EXPECT_THAT(leftover(), HasSubstr("the device is incomplete"));
}

TEST_F(BlockTransferFailure, ClosesTheDeviceWhenItIsInterrupted) {
    const Order order = flash(std::string(2 * kBlock, 'n'), 2);
    for (const char* at :
         {"blockdev open", "blockdev read", "memory write", "diag", "blockdev write 180 1 2 2"}) {
        SCOPED_TRACE(at);
        session.before = {};
        interruption = std::make_unique<Interruption>();
        const std::size_t number = next(order, at);
        interruptAt(number);
        EXPECT_EQ(failureOf<Interrupted>(order), "interrupted by SIGTERM");
        EXPECT_EQ(session.requests().size(), number + 1);
        EXPECT_EQ(session.requests().back(), "blockdev close 180 1");
        EXPECT_FALSE(session.isOpen);
    }
    EXPECT_THAT(leftover(), HasSubstr("the device is incomplete"));
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(BlockTransferFailure, KeepsThePartOfADumpThatIsInterrupted) {
    constexpr std::size_t kLarge = 3000;
    session.device = variedBytes(kLarge * kBlock);
    session.before = [&](const std::string& request, std::size_t) -> std::optional<Answer> {
        if (request == "blockdev read 180 1 2048 951 0")
            interruption->raise(SIGINT);
        return std::nullopt;
    };
    EXPECT_EQ(failureOf<Interrupted>(dump()), "interrupted by SIGINT");
    EXPECT_EQ(leftover(), path("target") + " was not written, " + path("target.part") +
                              " is incomplete: it holds blocks 0 to 2047 of blocks 0 to 2998");
    EXPECT_TRUE(contentOf(path("target.part")) == session.device.substr(0, 2048 * kBlock));
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransferFailure, FlashesNothingOntoADeviceThatIsNotWritable) {
    session.isWritable = false;
    EXPECT_THAT(failureOf<Refused>(flash("new")), HasSubstr("Device is Read-Only declared"));
    EXPECT_EQ(session.count("memory"), 0U);
    EXPECT_EQ(leftover(), "nothing was written to the device");
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransferFailure, DoesNotCloseADeviceThatCouldNotBeOpened) {
    Order order = dump();
    order.device.id = 7;
    EXPECT_EQ(failureOf<Refused>(order), "refused: Error 0x1010000: No Device inserted");
    EXPECT_THAT(session.requests(), ElementsAre("blockdev open 180 7"));
}

TEST_F(BlockTransferFailure, DoesNotCloseADeviceWhenTheRequestToOpenItCannotTravel) {
    session.before = [](const std::string&, std::size_t) -> std::optional<Answer> {
        throw Failure(Failure::Kind::InvalidRequest, "no such form");
    };
    EXPECT_EQ(failureOf<Failure>(dump()), "no such form");
    EXPECT_EQ(session.requests().size(), 1U);
    EXPECT_THAT(notes, IsEmpty());
}

TEST_F(BlockTransferFailure, TakesNoOtherRefusalForTheEndOfTheDevice) {
    session.before = [](const std::string& request, std::size_t) -> std::optional<Answer> {
        if (request != "blockdev read 180 1 3 1 0")
            return std::nullopt;
        return Answer{"Error 0x5", 5};
    };
    EXPECT_EQ(failureOf<Refused>(dump()), "refused: Error 0x5");
    EXPECT_FALSE(session.isOpen);
}

TEST_F(BlockTransferFailure, DoesNotBelieveACountThatCannotBe) {
    for (const char* count : {"base64(AAAAAA==)", "base64(AAAB/w==)", "base64(AAAGAA==)"}) {
        session.before = [count](const std::string& request, std::size_t) -> std::optional<Answer> {
            if (request != "blockdev read 180 1 3 2 0")
                return std::nullopt;
            return Answer{count};
        };
        EXPECT_THAT(failureOf<Failure>(dump(BlockRange{3, 4})), HasSubstr("bytes of 2 blocks of 512"));
    }
}

} // namespace
} // namespace station
