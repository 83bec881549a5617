// The table of buses, at the unit's own path. The table lives as long as the process.
#include "devices/I2CHandler.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "manager/ScriptedManager.h"
#include "support/FreshProcess.h"
#include "support/Results.h"

namespace {

constexpr char kBus[] = "/dev/i2c0";
constexpr char kMissing[] = "Open Error for /dev/i2c0: No such file or directory 2";

class I2CHandlerTest : public ::testing::Test {
protected:
    I2CHandlerTest() {
        if (!std::filesystem::is_directory("/dev/nvsku")) {
            ADD_FAILURE() << "This is no unit. Run the program with 'headunit exec --'.";
            std::exit(EXIT_FAILURE);
        }
        std::filesystem::remove_all(kBus);
    }

    static I2CHandler::BusInfo* someInfo() {
        static I2CHandler::BusInfo none;
        return &none;
    }
};

} // namespace

TEST_F(I2CHandlerTest, AnUnknownBusIsNothingAndNoError) {
    inFreshProcess([] {
        ScriptedManager manager(kBus);
        for (const unsigned bus : {1u, 2u, 255u, 256u, 0x80000000u, 0xFFFFFFFFu}) {
            SCOPED_TRACE(bus);
            I2CHandler::BusInfo* info = someInfo();
            EXPECT_THAT(I2CHandler::getBusInfo(bus, &info), isSuccess());
            EXPECT_EQ(info, nullptr);
        }
        EXPECT_EQ(manager.connections(), 0);
    });
}

TEST_F(I2CHandlerTest, TheBusIsOpenedByTheFirstLookUpAndKept) {
    inFreshProcess([] {
        ScriptedManager manager(kBus);
        I2CHandler::initBusInfos();
        I2CHandler::initBusInfos();
        EXPECT_EQ(manager.connections(), 0);
        I2CHandler::BusInfo* first = nullptr;
        ASSERT_THAT(I2CHandler::getBusInfo(0, &first), isSuccess());
        ASSERT_NE(first, nullptr);
        EXPECT_EQ(first->path, "/dev/i2c0");
        ASSERT_NE(first->i2c, nullptr);
        EXPECT_TRUE(first->i2c->isOpen());
        I2c* const bus = first->i2c.get();
        bus->disableStopBit();

        I2CHandler::initBusInfos();
        I2CHandler::BusInfo* again = nullptr;
        EXPECT_THAT(I2CHandler::getBusInfo(0, &again), isSuccess());
        EXPECT_EQ(again, first);
        EXPECT_EQ(again->i2c.get(), bus);
        EXPECT_FALSE(bus->isStopBitEnabled()) << "what was set stays";
        manager.willAnswer(0);
        EXPECT_THAT(bus->write(0x50, "x", 1), isSuccess());
        EXPECT_EQ(manager.connections(), 1);
        EXPECT_TRUE(manager.requests().size() == 1);
    });
}

TEST_F(I2CHandlerTest, ABusThatCannotBeOpenedIsTriedAgain) {
    inFreshProcess([] {
        I2CHandler::BusInfo* info = nullptr;
        EXPECT_THAT(I2CHandler::getBusInfo(0, &info), isFailure(ENOENT, kMissing));
        ASSERT_NE(info, nullptr);
        ASSERT_NE(info->i2c, nullptr);
        EXPECT_FALSE(info->i2c->isOpen());
        EXPECT_EQ(info->path, "/dev/i2c0");
        I2c* const closed = info->i2c.get();
        EXPECT_THAT(I2CHandler::getBusInfo(0, &info), isFailure(ENOENT, kMissing));
        EXPECT_EQ(info->i2c.get(), closed);

        const ScriptedManager manager(kBus);
        EXPECT_THAT(I2CHandler::getBusInfo(0, &info), isSuccess());
        EXPECT_EQ(info->i2c.get(), closed);
        EXPECT_TRUE(closed->isOpen());
    });
}

TEST_F(I2CHandlerTest, ABusThatWasOpenedStaysSoWhenItsManagerGoes) {
    inFreshProcess([] {
        auto manager = std::make_unique<ScriptedManager>(kBus);
        I2CHandler::BusInfo* info = nullptr;
        ASSERT_THAT(I2CHandler::getBusInfo(0, &info), isSuccess());
        manager.reset();
        EXPECT_THAT(I2CHandler::getBusInfo(0, &info), isSuccess());
        ASSERT_NE(info, nullptr);
        EXPECT_THAT(info->i2c->write(0x50, "x", 1),
                    isFailure(ENOENT, "Write Error on Device /dev/i2c0: No such file or directory"));
        manager = std::make_unique<ScriptedManager>(kBus);
        manager->willAnswer(0);
        EXPECT_THAT(info->i2c->write(0x50, "x", 1), isSuccess());
    });
}
