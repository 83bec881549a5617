#include "core/StandardStream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/Descriptors.h"
#include "support/Waiting.h"

namespace {

constexpr std::chrono::milliseconds kMoment{20};
// More than the pipes of any system take.
constexpr std::size_t kMoreThanAPipeTakes = std::size_t{2} << 20;

std::string lossOf(std::size_t bytes) {
    return "Prod.testserver: " + std::to_string(bytes) + " bytes for test were lost\n";
}

/// A stream into a pipe that is read when the test says so. The stream stays for ever: its thread does.
class StandardStreamTest : public testing::Test {
protected:
    StandardStreamTest() { EXPECT_TRUE(System::openPipe(m_reading, m_writing)); }

    // A thread that waits for the reader comes to its end with it.
    ~StandardStreamTest() override { m_reading.reset(); }

    StandardStream& makeStream() { return keep(m_writing.release(), nullptr); }
    static StandardStream& keep(int descriptor, StandardStream* notices) {
        static auto& all = *new std::vector<StandardStream*>; // where a leak checker finds them
        return *all.emplace_back(new StandardStream(descriptor, "test", notices)); // NOLINT
    }
    StandardStream& startedStream() {
        StandardStream& stream = makeStream();
        EXPECT_TRUE(stream.start());
        return stream;
    }

    std::string read(std::size_t size) const {
        std::string text(size, '\0');
        std::size_t done = 0;
        while (done < size) {
            const ssize_t count = ::read(m_reading.get(), text.data() + done, size - done);
            if (count <= 0)
                break;
            done += static_cast<std::size_t>(count);
        }
        text.resize(done);
        return text;
    }

    /// What there is without waiting.
    std::string readNow() const {
        ::fcntl(m_reading.get(), F_SETFL, O_NONBLOCK);
        std::string text = read(kMoreThanAPipeTakes);
        ::fcntl(m_reading.get(), F_SETFL, 0);
        return text;
    }

    System::Descriptor m_reading;
    System::Descriptor m_writing;
};

} // namespace

TEST_F(StandardStreamTest, WritesAtOnceBeforeItIsStarted) {
    StandardStream& stream = makeStream();
    stream.write("one");
    stream.write("");
    stream.write("two\n");
    EXPECT_EQ(readNow(), "onetwo\n");
}

TEST_F(StandardStreamTest, KeepsTheOrder) {
    StandardStream& stream = startedStream();
    std::string expected;
    for (int number = 0; number < 1000; ++number) {
        const std::string text = std::to_string(number) + "\n";
        stream.write(text);
        expected += text;
    }
    EXPECT_EQ(read(expected.size()), expected);
}

TEST_F(StandardStreamTest, WritesALongTextWhole) {
    StandardStream& stream = startedStream();
    const std::string text(kMoreThanAPipeTakes, 'x');
    stream.write(text); // would hang here
    EXPECT_TRUE(read(text.size()) == text);
    stream.flush(kPatience);
    EXPECT_EQ(readNow(), "");
}

TEST_F(StandardStreamTest, WithoutAThreadWhatIsNotTakenAtOnceIsLostAndToldOnce) {
    StandardStream& stream = makeStream();
    const std::string text(kMoreThanAPipeTakes, 'x');
    stream.write(text); // would hang here
    stream.write("lost, too");
    const std::string taken = readNow();
    EXPECT_GT(taken.size(), 0u);
    EXPECT_EQ(taken, text.substr(0, taken.size()));
    stream.write("again\n");
    stream.write("and again\n");
    EXPECT_EQ(readNow(), "again\n" + lossOf(text.size() - taken.size() + 9) + "and again\n");
}

TEST_F(StandardStreamTest, WithoutAThreadNobodyWaitsForRoomThatAnotherHasTaken) {
    constexpr int kRounds = 200; // the moment has to be met
    constexpr int kThreads = 4;
    const std::string piece(static_cast<std::size_t>(PIPE_BUF), 'x');
    const int descriptor = m_writing.get();
    StandardStream& stream = makeStream();
    // As many pieces as it takes.
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    while (::write(descriptor, piece.data(), piece.size()) > 0) {
    }
    ::fcntl(descriptor, F_SETFL, 0);
    for (int round = 0; round < kRounds && !HasFailure(); ++round) {
        read(piece.size());
        std::atomic<int> ready{0};
        std::atomic<int> done{0};
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int index = 0; index < kThreads; ++index)
            threads.emplace_back([&] {
                ++ready;
                while (ready < kThreads) {
                }
                stream.write(piece);
                ++done;
            });
        EXPECT_TRUE(eventually([&] { return done == kThreads; })) << "round " << round;
        // Whoever waits all the same comes to an end.
        while (done < kThreads)
            read(1);
        for (std::thread& thread : threads)
            thread.join();
    }
}

TEST_F(StandardStreamTest, WhatCannotBeKeptIsLostAndToldOnceBehindWhatWasKept) {
    StandardStream& stream = startedStream();
    const std::string kept(kMoreThanAPipeTakes, 'x');
    stream.write(kept);
    std::string received = read(1);
    // The thread holds the first; the second is kept whole and leaves no room.
    stream.write(kept);
    for (int number = 0; number < 100; ++number)
        stream.write("lost");
    ASSERT_TRUE(eventually([&] {
        received += readNow();
        return received.find("were lost\n") != std::string::npos;
    }));
    const std::size_t length = received.find_first_not_of('x');
    EXPECT_EQ(length, 2 * kept.size());
    EXPECT_EQ(received.substr(length), lossOf(400));
    stream.write("next\n");
    EXPECT_EQ(read(5), "next\n");
}

TEST_F(StandardStreamTest, AFlushWaitsNoLongerThanItIsTold) {
    StandardStream& stream = startedStream();
    const std::string text(kMoreThanAPipeTakes, 'x');
    stream.write(text);
    stream.flush(kMoment); // would hang here
    std::thread reader([&] { EXPECT_TRUE(read(text.size()) == text); });
    stream.flush(kPatience);
    reader.join();
    EXPECT_EQ(readNow(), "");
}

TEST_F(StandardStreamTest, TellsALossOfAnotherStreamOnceThatTakesTextAgain) {
    System::Descriptor otherReading;
    System::Descriptor otherWriting;
    ASSERT_TRUE(System::openPipe(otherReading, otherWriting));
    StandardStream& notices = makeStream();
    StandardStream& other = keep(otherWriting.release(), &notices);
    const std::string much(kMoreThanAPipeTakes, 'x');
    other.write(much);
    other.write("lost, too");
    EXPECT_EQ(readNow(), "") << "as long as it takes nothing, there is nothing to tell";
    std::string taken(much.size(), '\0');
    const ssize_t count = ::read(otherReading.get(), taken.data(), taken.size());
    ASSERT_GT(count, 0);
    other.write("and on");
    EXPECT_EQ(readNow(), lossOf(much.size() - static_cast<std::size_t>(count) + 9));
}

TEST_F(StandardStreamTest, AStreamThatIsClosedIsNoMatter) {
    for (const bool isStarted : {false, true}) {
        StandardStream& closed = keep(-1, nullptr);
        if (isStarted) {
            EXPECT_TRUE(closed.start());
        }
        closed.write("nobody will see this");
        closed.flush(kPatience);
    }
}

TEST_F(StandardStreamTest, LinesOfSeveralThreadsDoNotMix) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    StandardStream& stream = startedStream();
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int index = 0; index < kThreads; ++index)
        threads.emplace_back([&] {
            for (int line = 0; line < kLines; ++line)
                stream.write("one line\n");
        });
    std::string expected;
    for (int line = 0; line < kThreads * kLines; ++line)
        expected += "one line\n";
    EXPECT_EQ(read(expected.size()), expected);
    for (std::thread& thread : threads)
        thread.join();
}
