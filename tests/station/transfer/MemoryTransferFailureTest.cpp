#include "TransferTest.h"
#include "support/TestBytes.h"
#include "transfer/MemoryMover.h"

namespace station {
namespace {

using testing::HasSubstr;

constexpr std::size_t kSlice = MemoryMover::kMostSliceBytes;
constexpr std::size_t kSliceRequests = kSlice / kMostRequestBytes + 1; // the last one is the checksum

class MemoryTransferFailure : public TransferTest {
protected:
    MemoryTransferFailure() : m_bytes(variedBytes(2 * kSlice)) {}

    Order upload() const { return order(Order::Kind::Upload, fileOf(m_bytes)); }

    Order download() {
        std::copy(m_bytes.begin(), m_bytes.end(), session.buffer());
        Order order = this->order(Order::Kind::Download, path("target"));
        order.length = m_bytes.size();
        return order;
    }

    void expectPart(std::size_t size) const {
        EXPECT_FALSE(exists(path("target")));
        EXPECT_EQ(exists(path("target.part")), size > 0);
        if (size > 0) {
            EXPECT_TRUE(contentOf(path("target.part")) == m_bytes.substr(0, size));
        }
    }

    std::string m_bytes;
};

TEST_F(MemoryTransferFailure, MovesASliceAgainWhoseChecksumDiffers) {
    falsify("diag cksum 0 0 ", 1);
    run(upload());
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_EQ(session.count("memory write"), 3 * (kSliceRequests - 1));
    falsify("diag cksum 0 0 ", 1);
    run(download());
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_EQ(session.count("memory read"), 3 * (kSliceRequests - 1));
    EXPECT_TRUE(contentOf(path("target")) == m_bytes);
}

TEST_F(MemoryTransferFailure, NamesTheSliceWhoseChecksumAlwaysDiffers) {
    const std::string slice = "diag cksum 0 " + std::to_string(kSlice) + " ";
    const std::string named =
        "bytes " + std::to_string(kSlice) + " to " + std::to_string(2 * kSlice - 1);
    falsify(slice, 1000);
    EXPECT_THAT(failureOf<Unverified>(upload()), HasSubstr(named));
    EXPECT_EQ(session.count(slice), 4U);
    EXPECT_EQ(figures.retries, 3U);
    EXPECT_EQ(figures.done, kSlice);
    EXPECT_THAT(leftover(), HasSubstr("the first " + std::to_string(kSlice) + " are verified"));

    falsify(slice, 1000);
    EXPECT_THAT(failureOf<Unverified>(download()), HasSubstr(named));
    EXPECT_THAT(leftover(), HasSubstr("target.part is incomplete"));
    expectPart(kSlice);
}

TEST_F(MemoryTransferFailure, DoesNotPassAChangeOfAnEarlierSlice) {
    bool isChanged = false;
    session.after = [&](const std::string& request, Answer&) {
        if (isChanged || request.compare(0, 4, "diag") != 0)
            return;
        isChanged = true;
        session.buffer()[5] ^= 1;
    };
    EXPECT_THAT(failureOf<Unverified>(upload()), HasSubstr("was changed during the transfer"));
    isChanged = false;
    EXPECT_THAT(failureOf<Unverified>(download()), HasSubstr("was changed during the transfer"));
    expectPart(2 * kSlice);
}

TEST_F(MemoryTransferFailure, MovesASliceAgainOfWhichARequestWasDamaged) {
    bool isDamaged = false;
    const auto damageOnce = [&](const Answer& answer) {
        session.before = [&, answer](const std::string&, std::size_t number) -> std::optional<Answer> {
            if (number != 5 || isDamaged)
                return std::nullopt;
            isDamaged = true;
            return answer;
        };
    };
    damageOnce({"Error 0x8000400", 0x08000400});
    run(upload());
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_EQ(session.bufferBytes(0, m_bytes.size()), m_bytes);
}

TEST_F(MemoryTransferFailure, LeavesNothingUnderWay) {
    session.width = 4;
    session.before = [](const std::string& request, std::size_t number) -> std::optional<Answer> {
        if (number == 6)
            return Answer{"Error 0x8000400", 0x08000400};
        if (number == 10 && request.compare(0, 6, "memory") == 0)
            return Answer{"Error 0x8000100", 0x08000100};
        return std::nullopt;
    };
    EXPECT_EQ(failureOf<Refused>(upload()), "refused: Error 0x8000100");
    EXPECT_TRUE(session.isIdle());
    EXPECT_EQ(figures.retries, 1U) << "moved again after the damaged one";

    cutAt(session.requests().size() + 3);
    EXPECT_EQ(failureOf<Failure>(download()), "cut");
    EXPECT_TRUE(session.isIdle());

    interruptAt(session.requests().size() + 3);
    EXPECT_EQ(failureOf<Interrupted>(upload()), "interrupted by SIGTERM");
    EXPECT_TRUE(session.isIdle());
}

TEST_F(MemoryTransferFailure, ReadsASliceAgainOfWhichARequestWasDamaged) {
    bool isDamaged = false;
    session.after = [&](const std::string& request, Answer& answer) {
        if (isDamaged || request.compare(0, 11, "memory read") != 0)
            return;
        isDamaged = true;
        answer.text[10] = answer.text[10] == '0' ? '1' : '0';
    };
    run(download());
    EXPECT_EQ(figures.retries, 1U);
    EXPECT_TRUE(contentOf(path("target")) == m_bytes);
}

TEST_F(MemoryTransferFailure, EndsWithARefusal) {
    session.before = [](const std::string&, std::size_t number) -> std::optional<Answer> {
        if (number != 3)
            return std::nullopt;
        return Answer{"Error 0x8000100", 0x08000100};
    };
    EXPECT_EQ(failureOf<Refused>(upload()), "refused: Error 0x8000100");
    EXPECT_EQ(session.requests().size(), 3U);
}

TEST_F(MemoryTransferFailure, EndsWithAnAnswerThatIsNone) {
    for (const char* text : {"hex(00)", "hex(0", "ok", ""}) {
        session.after = [&](const std::string&, Answer& answer) { answer.text = text; };
        EXPECT_THAT(failureOf<Failure>(download()), HasSubstr("malformed answer: expected hex(...)"));
    }
    session.after = [&](const std::string& request, Answer& answer) {
        if (request.compare(0, 4, "diag") == 0)
            answer.text = "cksum base64(AAAA)";
    };
    EXPECT_THAT(failureOf<Failure>(upload()), HasSubstr("malformed answer: expected cksum base64(...)"));
}

TEST_F(MemoryTransferFailure, SaysHowFarItGotWhenTheLinkIsCut) {
    for (const std::size_t slices : {0U, 1U}) {
        for (const std::size_t request : {std::size_t{1}, std::size_t{2}, kSliceRequests}) {
            SCOPED_TRACE(request);
            cutAt(session.requests().size() + slices * kSliceRequests + request);
            EXPECT_EQ(failureOf<Failure>(upload()), "cut");
            EXPECT_EQ(figures.done, slices * kSlice);
            EXPECT_EQ(leftover(),
                      "the scratch buffer of the unit is incomplete: of the bytes from 0 to " +
                          std::to_string(2 * kSlice - 1) + " the first " +
                          std::to_string(slices * kSlice) + " are verified");
            cutAt(session.requests().size() + slices * kSliceRequests + request);
            EXPECT_EQ(failureOf<Failure>(download()), "cut");
            EXPECT_EQ(figures.done, slices * kSlice);
            expectPart(slices * kSlice);
        }
    }
}

TEST_F(MemoryTransferFailure, StopsAfterTheRequestInWhichItIsInterrupted) {
    for (const std::size_t request : {std::size_t{2}, kSliceRequests - 1, kSliceRequests + 1}) {
        SCOPED_TRACE(request);
        interruption = std::make_unique<Interruption>();
        interruptAt(session.requests().size() + request);
        const std::size_t before = session.requests().size();
        EXPECT_EQ(failureOf<Interrupted>(upload()), "interrupted by SIGTERM");
        EXPECT_EQ(session.requests().size(), before + request);
        EXPECT_EQ(figures.done, request > kSliceRequests ? kSlice : 0);
    }
}

TEST_F(MemoryTransferFailure, LeavesTheOldFileWhenItIsInterrupted) {
    std::ofstream(path("target")) << "old";
    interruptAt(kSliceRequests + 1);
    EXPECT_EQ(failureOf<Interrupted>(download()), "interrupted by SIGTERM");
    EXPECT_EQ(contentOf(path("target")), "old");
    EXPECT_TRUE(contentOf(path("target.part")) == m_bytes.substr(0, kSlice));
    EXPECT_THAT(leftover(), HasSubstr("target was not written, "));
}

TEST_F(MemoryTransferFailure, NoticesAFileThatShrinks) {
    const Order order = upload();
    session.before = [&](const std::string&, std::size_t) -> std::optional<Answer> {
        std::filesystem::resize_file(order.file, kSlice);
        return std::nullopt;
    };
    EXPECT_THAT(failureOf<std::runtime_error>(order), HasSubstr("has become shorter"));
}

} // namespace
} // namespace station
