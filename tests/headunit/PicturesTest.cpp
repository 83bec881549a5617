#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "pictures/BitmapFile.h"
#include "pictures/Lettering.h"
#include "pictures/PngFile.h"
#include "pictures/TestPictures.h"
#include "support/PngPicture.h"

namespace headunit {
namespace {

using namespace headunit_test;

constexpr std::size_t kBitmapSize = 1152054;

/// Three points wide, two high, all different.
Picture smallPicture() {
    Picture picture(3, 2);
    for (std::size_t y = 0; y < 2; ++y)
        for (std::size_t x = 0; x < 3; ++x)
            picture.at(x, y) = {static_cast<std::uint8_t>(16 * y + x + 1), 0x80,
                                static_cast<std::uint8_t>(255 - x)};
    return picture;
}

/// The first and the last column of each bar, and that the picture is the same in all rows.
void expectBars(const Picture& picture, const std::vector<Colour>& colours) {
    ASSERT_EQ(picture.width(), 800u);
    ASSERT_EQ(picture.height(), 480u);
    const std::size_t bars = colours.size();
    for (std::size_t bar = 0; bar < bars; ++bar) {
        const std::size_t first = (bar * 800 + bars - 1) / bars;
        const std::size_t last = ((bar + 1) * 800 + bars - 1) / bars - 1;
        for (const std::size_t y : {std::size_t{0}, std::size_t{479}})
            for (const std::size_t x : {first, last})
                EXPECT_TRUE(picture.at(x, y) == colours[bar]) << bar << ": " << x << ',' << y;
    }
    for (std::size_t x = 0; x < 800; ++x)
        for (std::size_t y = 1; y < 480; ++y)
            ASSERT_TRUE(picture.at(x, y) == picture.at(x, 0)) << x << ',' << y;
}

TEST(BitmapFile, HasTheBytesOfTheFormat) {
    const std::string expected =
        std::string("BM\x4E\0\0\0\0\0\0\0\x36\0\0\0", 14) +
        std::string("\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0\0\0\0\0\x18\0\0\0", 24) +
        std::string("\x13\x0B\0\0\x13\x0B\0\0\0\0\0\0\0\0\0\0", 16) +
        std::string("\xFF\x80\x11\xFE\x80\x12\xFD\x80\x13\0\0\0", 12) +
        std::string("\xFF\x80\x01\xFE\x80\x02\xFD\x80\x03\0\0\0", 12);
    EXPECT_EQ(encodeBitmap(smallPicture()), expected);
}

TEST(BitmapFile, IsReadAsItWasWritten) {
    const auto picture = decodeBitmap(encodeBitmap(smallPicture()));
    ASSERT_TRUE(picture);
    EXPECT_TRUE(areEqual(*picture, smallPicture()));
}

TEST(BitmapFile, ThatIsBrokenIsNone) {
    const std::string whole = encodeBitmap(smallPicture());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(decodeBitmap(whole.substr(0, size))) << size;
    const std::pair<std::size_t, char> kChanges[] = {{0, 'X'},     {13, 1},      {14, 12}, {18, 0},
                                                     {18, '\x7F'}, {21, '\x80'}, {22, 0},  {25, '\xFF'},
                                                     {28, 32},     {30, 1}};
    for (const auto& [place, value] : kChanges) {
        std::string changed = whole;
        changed[place] = value;
        EXPECT_FALSE(decodeBitmap(changed)) << place;
    }
}

TEST(PngFile, IsReadAsItWasWritten) {
    EXPECT_TRUE(areEqual(decodePng(encodePng(smallPicture())), smallPicture()));
    EXPECT_TRUE(areEqual(decodePng(encodePng(colourBars())), colourBars()));
}

TEST(TestPictures, HaveTheirNamesAndTheirSize) {
    const std::vector<std::string> names = {"colorscale_7bars_888_800x480.bmp",
                                            "greyscale_33bars_888_800x480.bmp",
                                            "greyscale_11bars_888_800x480.bmp"};
    ASSERT_EQ(kTestPictures.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(kTestPictures[i].name, names[i]);
        EXPECT_EQ(encodeBitmap(kTestPictures[i].draw()).size(), kBitmapSize);
    }
}

TEST(TestPictures, AreBars) {
    expectBars(kTestPictures[0].draw(), {{255, 255, 255},
                                         {255, 255, 0},
                                         {0, 255, 255},
                                         {0, 255, 0},
                                         {255, 0, 255},
                                         {255, 0, 0},
                                         {0, 0, 255}});
    for (const std::size_t picture : {std::size_t{1}, std::size_t{2}}) {
        const unsigned bars = picture == 1 ? 33 : 11;
        std::vector<Colour> colours;
        for (unsigned bar = 0; bar < bars; ++bar) {
            const auto level = static_cast<std::uint8_t>(bar * 255 / (bars - 1));
            colours.push_back({level, level, level});
        }
        EXPECT_EQ(colours.back().red, 255);
        expectBars(kTestPictures[picture].draw(), colours);
    }
}

TEST(Lettering, PutsInkWhereTheLetterIs) {
    Picture picture(24, 16);
    letter(picture, "I1", 1, 1, 2, {255, 255, 255});
    const auto ink = [&](std::size_t x, std::size_t y) { return picture.at(x, y).red == 255; };
    // The first row of an I is three squares wide, each two points.
    for (std::size_t x = 0; x < 12; ++x)
        EXPECT_EQ(ink(x, 1), x >= 3 && x <= 8) << x;
    EXPECT_TRUE(ink(5, 7));
    EXPECT_FALSE(ink(3, 7));
    EXPECT_TRUE(ink(17, 1)) << "the second letter";
    EXPECT_FALSE(ink(5, 0));
    EXPECT_FALSE(ink(5, 15));
}

TEST(Lettering, KeepsInsideThePicture) {
    Picture picture(10, 10);
    letter(picture, "8888-x", 4, 6, 3, {1, 2, 3});
    EXPECT_EQ(picture.at(7, 6).blue, 3) << "the upper left part is there";
}

} // namespace
} // namespace headunit
