#include <gtest/gtest.h>

#include <string>

#include "line/BinaryLink.h"
#include "support/UnitFiles.h"

namespace {

using namespace std::string_literals;

constexpr char kReadImageVersion[] = "\3s\1";
constexpr char kReadSerialNumber[] = "\3s\2";

class BinaryStatusTest : public BinaryLinkTest {};

TEST_F(BinaryStatusTest, IsAnsweredAgainAndAgain) {
    for (int round = 0; round < 20; ++round)
        expectExchange("\x02s", status(true));
}

TEST_F(BinaryStatusTest, TheRevisionIsReadOnce) {
    for (const char* revision : {"FFFF", "12345", "none", ""}) {
        writeFile(kRevisionFile, revision);
        expectExchange("\x02s", status(true));
    }
    removeFile(kRevisionFile);
    expectExchange("\x02s", status(true));
}

struct File {
    const char* request;
    const char* path;
};

constexpr File kFiles[] = {{kReadImageVersion, kImageVersionFile},
                           {kReadSerialNumber, kSerialNumberFile}};

TEST_F(BinaryStatusTest, IdentityFilesAreAnswered) {
    for (const File& file : kFiles) {
        for (const std::string& content :
             {"one line\n"s, "\0\1\x7F\x80\xFF"s, std::string(246, 'i'), std::string(1, '\0')}) {
            writeFile(file.path, content);
            expectExchange(file.request, answerFrame(file.request, content));
        }
    }
}

TEST_F(BinaryStatusTest, ALongFileIsCut) {
    for (const File& file : kFiles) {
        for (const std::size_t size : {247U, 248U, 1000U}) {
            writeFile(file.path, std::string(size, 'l'));
            const std::string answer = answerFrame(file.request, std::string(246, 'l'));
            ASSERT_EQ(answer.front(), '\xFE');
            expectExchange(file.request, answer);
        }
    }
}

TEST_F(BinaryStatusTest, AnEmptyFileIsAnsweredWithoutPayload) {
    for (const File& file : kFiles) {
        writeFile(file.path, "");
        expectExchange(file.request, answerFrame(file.request));
        expectErrors({"File "s + file.path + " is empty"});
    }
}

TEST_F(BinaryStatusTest, AMissingFileIsReported) {
    for (const File& file : kFiles) {
        removeFile(file.path);
        // No answer, so nothing to acknowledge.
        expectReply(file.request,
                    unanswerable("cannot open "s + file.path + ", no information available"));
        expectErrors({LinkErrors::kOutOfRange});
        expectServed();
    }
}

TEST_F(BinaryStatusTest, AFolderInPlaceOfAFileIsReported) {
    for (const File& file : kFiles) {
        removeFile(file.path);
        makeFolder(file.path);
        expectReply(file.request, unanswerable("cannot read "s + file.path + ": Is a directory"));
        expectErrors({LinkErrors::kOutOfRange});
        expectServed();
    }
}

TEST_F(BinaryStatusTest, WhatIsTooLongIsRefused) {
    for (const std::string& request :
         {"\4s\1\0"s, "\4s\2\7"s, "\4s\x2C\1"s, "\5s\0\0\0"s, framed("s"s + std::string(253, '\1'))})
        expectExchange(request, refusal(request, "Command 's': too long!"));
}

} // namespace
