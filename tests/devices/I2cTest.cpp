// The bus in front of its manager: each request byte for byte, and what each result is called. It is
// long as its tables are.
#include "devices/I2c.h"

#include "manager/ManagerFixture.h"
#include "support/BusResults.h"
#include "support/GuardedBuffer.h"
#include "support/Results.h"
#include "support/Rows.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace {

constexpr std::uint32_t kSetBusSpeed = 0x80040502;
constexpr std::uint32_t kSend = 0x80100505;
constexpr std::uint32_t kReceive = 0xC0100506;
constexpr std::uint32_t kSendReceive = 0xC0140507;

constexpr char kNotOpen[] = "Trying to get bus speed on an unitialized handler";

Bytes speedRequest(std::uint32_t speed) {
    return littleEndian({kSetBusSpeed, 4, 0, 0, speed});
}

Bytes writeRequest(std::uint32_t address, const Bytes& data, std::uint32_t stop = 1) {
    const auto length = static_cast<std::uint32_t>(data.size());
    return joined({littleEndian({kSend, 16 + length, 0, 0, address, 2, length, stop}), data});
}

Bytes readRequest(std::uint32_t address, std::uint32_t length, std::uint32_t stop = 1) {
    return littleEndian({kReceive, 16, 16 + length, 0, address, 2, length, stop});
}

Bytes transferRequest(std::uint32_t address, const Bytes& data, std::uint32_t length,
                      std::uint32_t stop = 1) {
    const auto sent = static_cast<std::uint32_t>(data.size());
    return joined(
        {littleEndian({kSendReceive, 20 + sent, 20 + length, 0, address, 2, sent, length, stop}), data});
}

class I2cTest : public ManagerFixture {
protected:
    void open() { ASSERT_THAT(m_bus.open(m_path), isSuccess()); }

    std::string text(const std::string& lead, const std::string& suffix) const {
        return lead + m_path.string() + suffix;
    }

    unsigned speed() {
        unsigned value = 4711;
        EXPECT_THAT(m_bus.getBusSpeed(value), isSuccess());
        return value;
    }

    DeviceResult write() { return m_bus.write(0x50, kData.data(), 2); }
    DeviceResult read() { return m_bus.read(0x50, m_buffer.data(), 8); }
    DeviceResult transfer() { return m_bus.transfer(0x50, kData.data(), 2, m_buffer.data(), 8); }

    void expectClosed() {
        EXPECT_FALSE(m_bus.isOpen());
        unsigned value = 4711;
        EXPECT_THAT(m_bus.getBusSpeed(value), isFailure(0x400, kNotOpen));
        EXPECT_EQ(value, 4711u);
        EXPECT_THAT(m_bus.setBusSpeed(400000), isFailure(0x400, kNotOpen));
        EXPECT_THAT(write(), isFailure(1024, kNotOpen));
        EXPECT_THAT(read(), isFailure(1024, kNotOpen));
        EXPECT_THAT(transfer(), isFailure(1024, kNotOpen));
        EXPECT_TRUE(m_buffer.isUntouchedBut(0));
        EXPECT_EQ(m_bus.close(), 0);
    }

    const Bytes kData = {7, 8};
    GuardedBuffer<8> m_buffer;
    I2c m_bus;
};

} // namespace

TEST_F(I2cTest, IsClosedUntilItIsOpened) {
    expectClosed();
    EXPECT_FALSE(m_bus.isStopBitEnabled());
    EXPECT_EQ(m_manager->connections(), 0);
}

TEST_F(I2cTest, OpenedItHasItsStopConditionAndItsSpeedWithoutAskingTheDevice) {
    open();
    EXPECT_TRUE(m_bus.isOpen());
    EXPECT_TRUE(m_bus.isStopBitEnabled());
    EXPECT_EQ(speed(), 100000u);
    EXPECT_THAT(m_manager->requests(), IsEmpty());
}

TEST_F(I2cTest, AnOpenBusIsNotOpenedAgain) {
    open();
    m_bus.disableStopBit();
    m_manager->willAnswer(0);
    ASSERT_THAT(m_bus.setBusSpeed(400000), isSuccess());
    EXPECT_THAT(m_bus.open(m_path), isSuccess());
    EXPECT_THAT(m_bus.open(m_folder / "none"), isSuccess());
    EXPECT_FALSE(m_bus.isStopBitEnabled());
    EXPECT_EQ(speed(), 400000u);
    m_manager->willAnswer(5);
    EXPECT_THAT(write(), isFailure(5, text("Write Error on Device ", ": The master send failed")));
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(I2cTest, ABusThatCannotBeOpenedSaysWhyAndStaysClosed) {
    const Rows<std::string, int, const char*> rows = {
        {m_folder / "none", ENOENT, ": No such file or directory 2"},
        {m_folder, EISDIR, ": Is a directory 21"},
        {"", ENOENT, ": No such file or directory 2"},
    };
    for (const auto& [path, error, suffix] : rows) {
        SCOPED_TRACE(path);
        EXPECT_THAT(m_bus.open(path), isFailure(error, "Open Error for " + path + suffix));
        EXPECT_FALSE(m_bus.isStopBitEnabled());
        expectClosed();
    }
    open();
    EXPECT_TRUE(m_bus.isOpen());
}

TEST_F(I2cTest, AClosedBusCanBeOpenedAgain) {
    open();
    m_bus.disableStopBit();
    m_manager->willAnswer(0);
    ASSERT_THAT(m_bus.setBusSpeed(400000), isSuccess());
    EXPECT_EQ(m_bus.close(), 0);
    EXPECT_TRUE(m_manager->isLeftAlone());
    expectClosed();
    open();
    EXPECT_TRUE(m_bus.isStopBitEnabled());
    EXPECT_EQ(speed(), 100000u);
    m_manager->willAnswer(0);
    EXPECT_THAT(write(), isSuccess());
    EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x50, {7, 8}));
}

TEST_F(I2cTest, ABusThatGoesAwayIsClosed) {
    {
        I2c bus;
        ASSERT_THAT(bus.open(m_path), isSuccess());
        m_manager->willAnswer(0);
        ASSERT_THAT(bus.write(1, "x", 1), isSuccess());
    }
    EXPECT_TRUE(m_manager->isLeftAlone());
}

TEST_F(I2cTest, AWriteSendsItsHeaderAndItsData) {
    open();
    const Bytes data = counting(300);
    for (const auto& [address, length] : Rows<unsigned, unsigned>{
             {0x50, 1}, {0, 2}, {0x7F, 251}, {0xFF, 300}, {0xFEDCBA98, 3}, {0x50, 0}}) {
        SCOPED_TRACE(length);
        m_manager->willAnswer(0);
        EXPECT_THAT(m_bus.write(address, data.data(), length), isSuccess());
        EXPECT_EQ(m_manager->lastRequest(),
                  writeRequest(address, Bytes(data.begin(), data.begin() + length)));
    }
    m_manager->willAnswer(0);
    EXPECT_THAT(m_bus.write(0x50, "\xA1\xA2", 2), isSuccess());
    EXPECT_THAT(m_manager->lastRequest(),
                ElementsAre(0x05, 0x05, 0x10, 0x80, 18, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, // request
                            0x50, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 1, 0, 0, 0,           // header
                            0xA1, 0xA2));
}

TEST_F(I2cTest, AReadHandsItsHeaderOverAsItsFirstReplyPart) {
    open();
    for (const unsigned address : {0x50u, 0u, 0x7Fu, 0xFEDCBA98u}) {
        m_manager->willAnswer(0, joined({Bytes(16), counting(8)}));
        EXPECT_THAT(m_bus.read(address, m_buffer.data(), 8), isSuccess());
        EXPECT_EQ(m_manager->lastRequest(), readRequest(address, 8));
    }
    EXPECT_EQ(m_buffer.first(8), "\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_TRUE(m_buffer.isUntouchedBut(8));
    EXPECT_THAT(m_manager->requests()[0],
                ElementsAre(0x06, 0x05, 0x10, 0xC0, 16, 0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, // request
                            0x50, 0, 0, 0, 2, 0, 0, 0, 8, 0, 0, 0, 1, 0, 0, 0));          // header
}

TEST_F(I2cTest, ATransferSendsItsHeaderAndItsDataAndReceives) {
    open();
    m_manager->willAnswer(0, joined({Bytes(20), counting(8)}));
    EXPECT_THAT(transfer(), isSuccess());
    EXPECT_EQ(m_buffer.first(8), "\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_TRUE(m_buffer.isUntouchedBut(8));
    EXPECT_THAT(
        m_manager->lastRequest(),
        ElementsAre(0x07, 0x05, 0x14, 0xC0, 22, 0, 0, 0, 28, 0, 0, 0, 0, 0, 0, 0,          // request
                    0x50, 0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 8, 0, 0, 0, 1, 0, 0, 0, 7, 8)); // and header
    const Bytes data = counting(255);
    m_manager->willAnswer(0, Bytes(21));
    EXPECT_THAT(m_bus.transfer(0xFEDCBA98, data.data(), 255, m_buffer.data(), 1), isSuccess());
    EXPECT_EQ(m_manager->lastRequest(), transferRequest(0xFEDCBA98, data, 1));
}

TEST_F(I2cTest, NothingLandsBeyondTheBufferWhateverComes) {
    open();
    for (const unsigned count : {8u, 9u, 64u, 5000u}) {
        SCOPED_TRACE(count);
        m_buffer = {};
        m_manager->willAnswer(0, joined({Bytes(16, 0xEE), counting(count)}));
        EXPECT_THAT(read(), isSuccess());
        EXPECT_TRUE(m_buffer.isUntouchedBut(8));
        m_buffer = {};
        m_manager->willAnswer(0, joined({Bytes(20, 0xEE), counting(count)}));
        EXPECT_THAT(transfer(), isSuccess());
        EXPECT_TRUE(m_buffer.isUntouchedBut(8));
    }
    m_buffer = {};
    m_manager->willAnswer(0, Bytes(1000, 0xEE));
    EXPECT_THAT(write(), isSuccess());
    EXPECT_TRUE(m_buffer.isUntouchedBut(0));
}

TEST_F(I2cTest, ASuccessThatBringsTooFewBytesIsAFailure) {
    open();
    for (const unsigned count : {0u, 1u, 15u, 16u, 17u, 23u}) {
        SCOPED_TRACE(count);
        m_manager->willAnswer(0, Bytes(count, 0xEE));
        EXPECT_THAT(read(), isFailure(EPROTO, text("Read Error on Device ", ": Protocol error")));
        m_manager->willAnswer(0, Bytes(count + 4, 0xEE));
        EXPECT_THAT(transfer(),
                    isFailure(EPROTO, text("Transfer Error on Device ", ": Protocol error")));
        EXPECT_TRUE(m_buffer.isUntouchedBut(0));
    }
    EXPECT_EQ(m_manager->connections(), 1);
}

TEST_F(I2cTest, EachResultHasItsText) {
    open();
    for (const auto& [result, written, readText, speedText] : kBusResults) {
        SCOPED_TRACE(result);
        for (int request = 0; request < 4; ++request)
            m_manager->willAnswer(result, Bytes(100, 0xEE));
        EXPECT_THAT(write(), isFailure(result, text("Write Error on Device ", written)));
        EXPECT_THAT(read(), isFailure(result, text("Read Error on Device ", readText)));
        EXPECT_THAT(transfer(), isFailure(result, text("Transfer Error on Device ", written)));
        EXPECT_THAT(m_bus.setBusSpeed(400000),
                    isFailure(result, text("setBusSpeed Error on Device ", speedText)));
        EXPECT_TRUE(m_buffer.isUntouchedBut(0));
        EXPECT_TRUE(m_bus.isOpen());
        EXPECT_TRUE(m_bus.isStopBitEnabled());
        EXPECT_EQ(speed(), 100000u);
    }
}

TEST_F(I2cTest, TheStopConditionIsInEveryHeaderAndStaysAsItWasSet) {
    open();
    const auto expectStop = [this](bool stop) {
        SCOPED_TRACE(stop);
        EXPECT_EQ(m_bus.isStopBitEnabled(), stop);
        for (const int result : {0, 5, 0}) {
            const std::size_t before = m_manager->requests().size();
            for (int request = 0; request < 4; ++request)
                m_manager->willAnswer(result, Bytes(28));
            write();
            read();
            transfer();
            m_bus.setBusSpeed(100000);
            ASSERT_THAT(m_manager->requests(), SizeIs(before + 4));
            EXPECT_EQ(m_manager->requests()[before], writeRequest(0x50, {7, 8}, stop ? 1 : 0));
            EXPECT_EQ(m_manager->requests()[before + 1], readRequest(0x50, 8, stop ? 1 : 0));
            EXPECT_EQ(m_manager->requests()[before + 2], transferRequest(0x50, {7, 8}, 8, stop ? 1 : 0));
        }
        EXPECT_EQ(m_bus.isStopBitEnabled(), stop);
    };
    expectStop(true);
    m_bus.disableStopBit();
    expectStop(false);
    m_bus.disableStopBit();
    expectStop(false);
    m_bus.enableStopBit();
    expectStop(true);
}

TEST_F(I2cTest, ASpeedThatWasSetIsKept) {
    open();
    for (const unsigned value : {400000u, 100000u, 1u, 0xFEDCBA98u}) {
        m_manager->willAnswer(0);
        EXPECT_THAT(m_bus.setBusSpeed(value), isSuccess());
        EXPECT_EQ(m_manager->lastRequest(), speedRequest(value));
        EXPECT_EQ(speed(), value);
    }
    EXPECT_THAT(m_manager->requests()[0],
                ElementsAre(0x02, 0x05, 0x04, 0x80, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, // request
                            0x80, 0x1A, 0x06, 0x00));                                   // 400000
    m_manager->willAnswer(22);
    m_bus.setBusSpeed(100000);
    EXPECT_EQ(speed(), 0xFEDCBA98u) << "a failure leaves it";
    EXPECT_THAT(m_manager->requests(), SizeIs(5));
}

TEST_F(I2cTest, AManagerThatGoesDuringARequestIsAFailureAndTheBusStaysOpen) {
    open();
    m_bus.disableStopBit();
    m_manager->willHangUp();
    EXPECT_THAT(write(), isFailure(EPIPE, text("Write Error on Device ", ": Broken pipe")));
    m_manager->willHangUp();
    EXPECT_THAT(read(), isFailure(EPIPE, text("Read Error on Device ", ": Broken pipe")));
    m_manager->willHangUp();
    EXPECT_THAT(transfer(), isFailure(EPIPE, text("Transfer Error on Device ", ": Broken pipe")));
    m_manager->willVanish();
    EXPECT_THAT(m_bus.setBusSpeed(400000),
                isFailure(EPIPE, text("setBusSpeed Error on Device ", ": Broken pipe")));
    EXPECT_THAT(write(),
                isFailure(ENOENT, text("Write Error on Device ", ": No such file or directory")));
    EXPECT_TRUE(m_bus.isOpen());
    EXPECT_EQ(speed(), 100000u);
    EXPECT_TRUE(m_buffer.isUntouchedBut(0));

    comeBack();
    m_manager->willAnswer(0);
    EXPECT_THAT(write(), isSuccess());
    EXPECT_EQ(m_manager->lastRequest(), writeRequest(0x50, {7, 8}, 0));
}
