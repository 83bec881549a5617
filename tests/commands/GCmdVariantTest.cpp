// Which hardware variant the unit is, and what that makes of its picture outputs.
#include <filesystem>

#include "support/ErrorOutput.h"
#include "support/GraphicsUnit.h"

using ::testing::IsEmpty;

namespace {

constexpr unsigned int kInvalidOutput = 0x49000002;
constexpr char kDefaultTaken[] =
    "Prod.testserver:   \xC2\xBB The variant could not be detected using the default variant PAG\n";

class GCmdVariantTest : public GraphicsUnit {
protected:
    /// What is said on standard error when the command comes into being.
    static std::string madeCommand() {
        return errorOutputOf([] { graphics(); });
    }

    static void expectVariant(const std::string& name, bool hasSecondOutput) {
        EXPECT_EQ(graphics().isOutChannelValid(2), hasSecondOutput);
        EXPECT_TRUE(graphics().isOutChannelValid(0));
        const std::string text = "Output Channel for Test picture out of range for " + name + " variant";
        for (const unsigned char channel : Bytes{1, 3, 4, 0x80, 0xFF}) {
            EXPECT_FALSE(graphics().isOutChannelValid(channel));
            expectError(graphics().displayTestImage(channel, 0), kInvalidOutput, text);
            expectError(graphics().displayTestImage(channel, 3), kInvalidOutput, text);
        }
        if (!hasSecondOutput) {
            expectError(graphics().displayTestImage(2, 0), kInvalidOutput, text);
        }
        EXPECT_THAT(calls(), IsEmpty());
    }
};

} // namespace

TEST_F(GCmdVariantTest, TheImageVersionNamesTheVariant) {
    const Rows<const char*, const char*, bool, GCmd::variant_type> rows = {
        {"PAG", "PAG", true, GCmd::PAG},
        {"HU G11 11.02.03\n", "G11", false, GCmd::G11},
        {"G22\n", "G22", true, GCmd::G22},
        {"one\ntwo-G24x\nthree", "G24", false, GCmd::G24},
        {"xG21", "G21", true, GCmd::G21},
        {"G21 G24 G22 G11 PAG", "PAG", true, GCmd::PAG},
        {"G21 G24 G22 G11", "G11", false, GCmd::G11},
        {"G21 G24 G22", "G22", true, GCmd::G22},
        {"G21 G24", "G24", false, GCmd::G24},
    };
    for (const auto& [text, name, hasSecondOutput, variant] : rows) {
        SCOPED_TRACE(text);
        inFreshProcess([text = text, name = name, second = hasSecondOutput, variant = variant] {
            setImageVersion(text);
            EXPECT_EQ(madeCommand(), "");
            expectVariant(name, second);
            EXPECT_EQ(graphics().getVariant(), variant);
        });
    }
}

TEST_F(GCmdVariantTest, WithoutANameTheDefaultIsTaken) {
    for (const char* text : {"", "HU-ECE-HIGH 11.02.03\n", "pag g11 g22 g24 g21", "G 11 G2 2", "G12"}) {
        SCOPED_TRACE(text);
        inFreshProcess([text] {
            setImageVersion(text);
            EXPECT_EQ(madeCommand(), kDefaultTaken);
            EXPECT_EQ(madeCommand(), "") << "only once";
            expectVariant("PAG", true);
        });
    }
}

TEST_F(GCmdVariantTest, WithoutAFileTheDefaultIsTaken) {
    for (const bool hasFolder : {false, true})
        inFreshProcess([hasFolder] {
            remove("/mnt/app/img_ver.txt");
            if (hasFolder)
                std::filesystem::create_directory("/mnt/app/img_ver.txt");
            EXPECT_EQ(madeCommand(), kDefaultTaken);
            expectVariant("PAG", true);
            remove("/mnt/app/img_ver.txt");
        });
}

TEST_F(GCmdVariantTest, TheVariantIsSettledOnce) {
    inFreshProcess([] {
        setImageVersion("G24");
        graphics();
        setImageVersion("PAG");
        expectVariant("G24", false);
        EXPECT_EQ(graphics().getVariant(), GCmd::PAG) << "what the text says now";
        expectVariant("G24", false);
    });
}

TEST_F(GCmdVariantTest, TheFirstOutputShowsPicturesOnEachVariant) {
    for (const char* name : {"PAG", "G11", "G22", "G24", "G21"}) {
        SCOPED_TRACE(name);
        inFreshProcess([name] {
            setImageVersion(name);
            expectShown(0, 0,
                        joined({"dmdt|dc|100|-9999", "dmdt|sc|0|100", "showimage"}, showing(0, 0)));
        });
    }
}

TEST_F(GCmdVariantTest, BothProtocolsRefuseAnOutputThatTheVariantLacks) {
    inFreshProcess([this] {
        setImageVersion("G11");
        graphics();
        const std::string text = "Output Channel for Test picture out of range for G11 variant";
        expectErrorSent(m_frontEnd, Bytes{0x05, 'G', 0xA0, 2, 0}, kInvalidOutput, text);
        expectErrorSent(m_frontEnd, tokens({"graphic", "display", "2", "0"}), kInvalidOutput, text);
        EXPECT_THAT(calls(), IsEmpty());
    });
}
