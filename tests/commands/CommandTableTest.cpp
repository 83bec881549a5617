#include <gmock/gmock.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "commands/DCmd.h"
#include "commands/ECmd.h"
#include "commands/ErrorCmd.h"
#include "commands/GCmd.h"
#include "commands/IWriteCmd.h"
#include "commands/PWriteCmd.h"
#include "commands/SWriteCmd.h"
#include "commands/ackCmd.h"
#include "commands/cReadCmd.h"
#include "commands/iReadCmd.h"
#include "commands/mCmd.h"
#include "commands/pReadCmd.h"
#include "commands/sReadCmd.h"
#include "commands/tCmd.h"
#include "core/Handler.h"
#include "support/Waiting.h"
#include "wire/Catalogue.h"

namespace {

struct Entry {
    AbstractCmd* command;
    signed char id;
    const char* name;
};

template <typename Command>
Entry entry(signed char id, const char* name) {
    EXPECT_EQ(Command::getInstance(), Command::getInstance()) << name;
    return {Command::getInstance(), id, name};
}

} // namespace

TEST(CommandTableTest, EveryCommandIsReachableByItsIdAndItsName) {
    Handler& handler = *Handler::getInstance();
    ::testing::internal::CaptureStderr();
    handler.initHandler();
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                ::testing::Not(::testing::HasSubstr("registerHandler")))
        << "ids and names are unique";
    EXPECT_TRUE(handler.isValid());
    EXPECT_TRUE(eventually([&] { return handler.getState() == StatedThread::Started; }));

    const Entry entries[] = {
        entry<ackCmd>(0x06, "ack"),     entry<DCmd>('D', "diag"),     entry<ECmd>('E', "audio"),
        entry<GCmd>('G', "graphic"),    entry<iReadCmd>('i', "i2c"),  entry<IWriteCmd>('I', ""),
        entry<mCmd>('m', "blockdev"),   entry<pReadCmd>('p', "port"), entry<PWriteCmd>('P', ""),
        entry<sReadCmd>('s', "status"), entry<cReadCmd>('c', "exec"), entry<SWriteCmd>('S', "serial"),
        entry<tCmd>('t', "memory"),
    };
    for (const Entry& entry : entries) {
        SCOPED_TRACE(entry.name);
        EXPECT_EQ(entry.command->tavrin_getName(), entry.id);
        EXPECT_EQ(entry.command->ascii_getName(), entry.name);
        ::testing::internal::CaptureStderr();
        EXPECT_FALSE(handler.registerHandler(static_cast<char>(entry.id), ErrorCmd::getInstance()));
        if (*entry.name != '\0') {
            EXPECT_FALSE(handler.registerHandler(entry.name, ErrorCmd::getInstance()));
        }
        EXPECT_THAT(::testing::internal::GetCapturedStderr(), ::testing::HasSubstr(entry.name));
    }
}

TEST(CommandTableTest, HasTheCommandsOfTheCatalogue) {
    Handler& handler = *Handler::getInstance();
    handler.initHandler();
    std::string ids;
    for (const wire::Command& command : wire::kCatalogue) {
        ids += command.ids;
        EXPECT_FALSE(handler.registerHandler(std::string(command.name), ErrorCmd::getInstance()))
            << command.name
            << " of wire/Catalogue.h is to be made in production/commands/CommandTable.cpp";
    }
    for (int id = 1; id < 256; ++id) {
        const bool isListed = ids.find(static_cast<char>(id)) != std::string::npos;
        EXPECT_EQ(handler.registerHandler(static_cast<char>(id), ErrorCmd::getInstance()), !isListed)
            << "id " << id << ": wire/Catalogue.h and production/commands/CommandTable.cpp differ";
    }
}

TEST(CommandTableTest, AProcessMayEndWhileTheDispatcherWaits) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto startAndEnd = [] {
        constexpr unsigned kLongestSeconds = 60;
        ::alarm(kLongestSeconds);
        Handler& handler = *Handler::getInstance();
        handler.initHandler();
        handler.runExclusively([] {}); // the dispatcher waits now, or is about to
        std::exit(0);
    };
    EXPECT_EXIT(startAndEnd(), ::testing::ExitedWithCode(0), "");
}
