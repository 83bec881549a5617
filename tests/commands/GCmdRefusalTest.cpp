// Requests that are refused before any tool is run, so that they need no unit.
#include <gmock/gmock.h>

#include <cstdlib>

#include "commands/GCmd.h"
#include "support/CommandBench.h"
#include "support/RefusedResources.h"

using ::testing::ElementsAre;

namespace {

constexpr unsigned int kInvalidOutput = 0x49000002;
constexpr unsigned int kInvalidIndex = 0x49000004;
constexpr unsigned int kInvalidInput = 0x49000008;

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kNoIndex[] = "Test picture index out of range";
constexpr char kNoLibraryPath[] =
    "Error when setting LD_LIBRARY_PATH env. variable forshowimage application";
constexpr char kNoConfiguration[] =
    "Error when setting  env. variable IPL_CONFIG_DIR forshowimage application";

class GCmdRefusalTest : public CommandTest<GCmd> {
protected:
    ~GCmdRefusalTest() override { refuseVariable(nullptr); }
};

} // namespace

TEST_F(GCmdRefusalTest, ThePicturesHaveTheirNames) {
    EXPECT_THAT(GCmd::test_screens, ElementsAre(::testing::StrEq("colorscale_7bars_888_800x480.bmp"),
                                                ::testing::StrEq("greyscale_33bars_888_800x480.bmp"),
                                                ::testing::StrEq("greyscale_11bars_888_800x480.bmp")));
}

TEST_F(GCmdRefusalTest, OnlyTheseChannelsCarryVideo) {
    for (unsigned channel = 0; channel < 256; ++channel) {
        SCOPED_TRACE(channel);
        const auto number = static_cast<unsigned char>(channel);
        EXPECT_EQ(GCmd::isOutChannelForVideoValid(number), channel == 0 || channel == 1);
        EXPECT_EQ(GCmd::isInChannelValid(number), channel == 0 || channel == 2 || channel == 3);
    }
}

TEST_F(GCmdRefusalTest, FramesOfAnotherLength) {
    for (const Bytes& request :
         {Bytes{3, 'G', 0xA0}, Bytes{4, 'G', 0xA0, 0}, Bytes{6, 'G', 0xA0, 0, 0, 0},
          Bytes{6, 'G', 0xA0, 0, 3, 0}, Bytes{4, 'G', 0xA1, 0}, Bytes{5, 'G', 0xA1, 0, 0},
          Bytes{7, 'G', 0xA1, 0, 0, 0, 0}})
        expectRefused(request, kGenericError, kInvalidLength);
}

TEST_F(GCmdRefusalTest, FramesOfAnotherKind) {
    for (const auto& [code, shown] : Rows<unsigned char, const char*>{
             {0x00, "00"}, {0x0A, "0a"}, {0x9F, "9f"}, {0xA2, "a2"}, {0xFF, "ff"}}) {
        const std::string text = "Unknown 'G' subcommand: " + std::string(shown);
        expectRefused(Bytes{5, 'G', code, 0, 0}, kGenericError, text);
        expectRefused(Bytes{7, 'G', code, 0, 0, 0, 0}, kGenericError, text);
    }
    expectRefused(Bytes{2, 'G'}, kGenericError, "Unknown 'G' subcommand: ffffffff");
    expectNothingRefused(kGenericError, "Unknown 'G' subcommand: ffffffff");
}

TEST_F(GCmdRefusalTest, LinesOfAnotherKind) {
    expectRefused(Words{"graphic"}, kGenericError, "Expected a subcommand!");
    expectRefused(Tokens{}, kGenericError, "Expected a subcommand!");
    for (const char* word :
         {"displa", "Display", " display", "captur", "CAPTURE", "show", "0xA0", "%s%n%x"})
        expectRefused(Words{"graphic", word, "0", "0"}, kGenericError,
                      "Unknown 'graphic' subcommand: " + std::string(word));
    expectRefused(Words{"graphic", "wrong"}, kGenericError, "Unknown 'graphic' subcommand: wrong");
    expectRefused(Tokens{token("graphic"), {'d', 'i', 's'}}, kGenericError,
                  "Unknown 'graphic' subcommand: dis");
    expectRefused(Tokens{token("graphic"), {}}, kGenericError, "Unknown 'graphic' subcommand: ");
}

TEST_F(GCmdRefusalTest, LinesWithoutAllTheirNumbers) {
    for (const Words& words : {Words{"graphic", "display"}, Words{"graphic", "display", "0"}})
        expectRefused(words, kGenericError, "Expected an output channel and a picture index!");
    for (const Words& words : {Words{"graphic", "capture"}, Words{"graphic", "capture", "0"}})
        expectRefused(words, kGenericError, "Expected an input channel and an output channel!");
}

TEST_F(GCmdRefusalTest, PicturesThatThereAreNot) {
    for (const unsigned char index : Bytes{3, 4, 0x80, 0xFF}) {
        expectRefused(Bytes{5, 'G', 0xA0, 0, index}, kInvalidIndex, kNoIndex);
        expectError(command().displayTestImage(0, index), kInvalidIndex, kNoIndex);
    }
    for (const char* index : {"3", "0x3", "255", "-1", "259", "-253"})
        expectRefused(Words{"graphic", "display", "0", index}, kInvalidIndex, kNoIndex);
    expectRefused(Words{"graphic", "display", "256", "3"}, kInvalidIndex, kNoIndex);
}

TEST_F(GCmdRefusalTest, ChannelsThatCarryNoVideo) {
    for (const unsigned char output : Bytes{2, 3, 4, 0xFF}) {
        const std::string text =
            "The output channel : " + std::to_string(output) + " is invalid for video";
        expectRefused(Bytes{6, 'G', 0xA1, 0, 0, output}, kInvalidOutput, text);
        expectRefused(Bytes{6, 'G', 0xA1, 0, 9, output}, kInvalidOutput, text);
        expectRefused(Words{"graphic", "capture", "0", std::to_string(output)}, kInvalidOutput, text);
    }
    for (const unsigned char input : Bytes{1, 4, 0x80, 0xFF}) {
        const std::string text =
            "The input channel : " + std::to_string(input) + " is invalid for video";
        expectRefused(Bytes{6, 'G', 0xA1, 0, input, 0}, kInvalidInput, text);
        expectRefused(Words{"graphic", "capture", std::to_string(input), "1"}, kInvalidInput, text);
    }
    expectRefused(Words{"graphic", "capture", "257", "0"}, kInvalidInput,
                  "The input channel : 1 is invalid for video");
}

TEST_F(GCmdRefusalTest, AnEnvironmentThatCannotBeSet) {
    for (const auto& [variable, text] : Rows<const char*, const char*>{
             {"LD_LIBRARY_PATH", kNoLibraryPath}, {"IPL_CONFIG_DIR", kNoConfiguration}}) {
        refuseVariable(variable);
        expectError(GCmd::setEnvVar(), kGenericError, text);
        expectError(command().switchToBlack(0), kGenericError, text);
        expectRefused(Bytes{5, 'G', 0xA0, 0, 0}, kGenericError, text);
        expectRefused(Words{"graphic", "display", "0", "0"}, kGenericError, text);
        for (const char* input : {"0", "2", "3"})
            expectRefused(Words{"graphic", "capture", input, "0"}, kGenericError, text);
    }
}

TEST_F(GCmdRefusalTest, TheEnvironmentIsOverwritten) {
    ::setenv("LD_LIBRARY_PATH", "/before", 1);
    ::unsetenv("IPL_CONFIG_DIR");
    for (int time = 0; time < 2; ++time) {
        expectError(GCmd::setEnvVar(), 0, "");
        EXPECT_STREQ(std::getenv("LD_LIBRARY_PATH"),
                     "/root/lib-target:/vrk/lib:/armle/lib:/armle/lib/dll");
        EXPECT_STREQ(std::getenv("IPL_CONFIG_DIR"), "/etc/vrk/production");
        ::setenv("IPL_CONFIG_DIR", "/before", 1);
    }
    ::unsetenv("LD_LIBRARY_PATH");
    ::unsetenv("IPL_CONFIG_DIR");
}
