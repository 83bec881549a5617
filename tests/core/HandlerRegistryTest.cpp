#include <gtest/gtest.h>

#include "core/Handler.h"
#include "support/ErrorOutput.h"
#include "support/FreshProcess.h"
#include "support/Rows.h"
#include "support/ScriptedCommand.h"

namespace {

Handler& handler() {
    return *Handler::getInstance();
}

} // namespace

TEST(HandlerRegistryTest, ThereIsOneHandler) {
    EXPECT_EQ(Handler::getInstance(), Handler::getInstance());
}

TEST(HandlerRegistryTest, NamesIdsByLetterOrInHexadecimal) {
    const Rows<unsigned char, const char*> rows = {
        {'a', "a"},     {'z', "z"},     {'A', "A"},     {'Z', "Z"},     {'x', "x"},    {0x00, "0x00"},
        {0x06, "0x06"}, {'0', "0x30"},  {'@', "0x40"},  {'[', "0x5B"},  {'`', "0x60"}, {'{', "0x7B"},
        {0x7F, "0x7F"}, {0x80, "0x80"}, {0xE4, "0xE4"}, {0xFF, "0xFF"}, {'%', "0x25"},
    };
    for (const auto& [id, name] : rows) {
        SCOPED_TRACE(name);
        EXPECT_EQ(handler().getHandlerName(id), name);
    }
}

TEST(HandlerRegistryTest, NoCommandCannotBeRegistered) {
    const std::string complaint = "Prod.testserver: Listener::registerHandler: Handler is NULL\n";
    EXPECT_EQ(errorOutputOf([] { EXPECT_FALSE(handler().registerHandler('n', nullptr)); }), complaint);
    EXPECT_EQ(errorOutputOf([] { EXPECT_FALSE(handler().registerHandler("none", nullptr)); }),
              complaint);
}

TEST(HandlerRegistryTest, TheFirstCommandKeepsAnId) {
    inFreshProcess([] {
        ScriptedCommand& first = ScriptedCommand::make('1', "first");
        ScriptedCommand& second = ScriptedCommand::make('2', "second");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_TRUE(handler().registerHandler('r', &first)); }), "");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_FALSE(handler().registerHandler('r', &second)); }),
                  "Prod.testserver: Listener::registerHandler: Unable to register Handler: 2. "
                  "Reason: Command r registered by 1\n\n");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_FALSE(handler().registerHandler('r', &first)); }),
                  "Prod.testserver: Listener::registerHandler: Unable to register Handler: 1. "
                  "Reason: Command r registered by 1\n\n");
    });
}

TEST(HandlerRegistryTest, TheFirstCommandKeepsAName) {
    inFreshProcess([] {
        ScriptedCommand& first = ScriptedCommand::make('1', "first");
        ScriptedCommand& second = ScriptedCommand::make('2', "second");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_TRUE(handler().registerHandler("taken", &first)); }), "");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_FALSE(handler().registerHandler("taken", &second)); }),
                  "Prod.testserver: Listener::registerHandler: Unable to register Handler: second. "
                  "Reason: Command taken registered by first\n");
        EXPECT_EQ(errorOutputOf([&] { EXPECT_TRUE(handler().registerHandler("Taken", &second)); }), "")
            << "names differ in case";
    });
}

TEST(HandlerRegistryTest, ACommandRegistersItselfByNameFirst) {
    inFreshProcess([] {
        EXPECT_EQ(errorOutputOf([] { ScriptedCommand::make('T', "twice", true); }), "");
        EXPECT_EQ(errorOutputOf([] { ScriptedCommand::make('T', "twice", true); }),
                  "Prod.testserver: Listener::registerHandler: Unable to register Handler: twice. "
                  "Reason: Command twice registered by twice\n"
                  "Prod.testserver: Listener::registerHandler: Unable to register Handler: T. "
                  "Reason: Command T registered by T\n\n");
    });
}

TEST(HandlerRegistryTest, WhatACommandLacksIsNotRegistered) {
    inFreshProcess([] {
        ScriptedCommand& other = ScriptedCommand::make('o', "other");
        EXPECT_EQ(errorOutputOf([] {
                      ScriptedCommand::make('U', "", true);
                      ScriptedCommand::make(0, "nameonly", true);
                      ScriptedCommand::make('V', "unregistered", false);
                  }),
                  "");
        EXPECT_EQ(errorOutputOf([&] {
                      EXPECT_TRUE(handler().registerHandler("", &other));
                      EXPECT_TRUE(handler().registerHandler('\0', &other));
                      EXPECT_TRUE(handler().registerHandler('V', &other));
                      EXPECT_TRUE(handler().registerHandler("unregistered", &other));
                  }),
                  "");
        EXPECT_NE(errorOutputOf([&] {
                      EXPECT_FALSE(handler().registerHandler('U', &other));
                      EXPECT_FALSE(handler().registerHandler("nameonly", &other));
                  }),
                  "");
    });
}
