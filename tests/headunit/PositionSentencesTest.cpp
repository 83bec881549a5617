#include "devices/PositionSentences.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

#include "support/Rows.h"

namespace headunit {
namespace {

constexpr std::time_t kTime = 764426119; // 1994-03-23 12:35:19 UTC

TEST(PositionSentences, AreTheseTwo) {
    EXPECT_EQ(positionSentences({48.1173, 11.516666666}, kTime),
              "$GPGGA,123519.00,4807.0380,N,01131.0000,E,1,08,1.0,0.0,M,0.0,M,,*5A\r\n"
              "$GPRMC,123519.00,A,4807.0380,N,01131.0000,E,0.0,0.0,230394,,,A*5E\r\n");
}

struct PlaceCase {
    const char* title;
    Position position;
    const char* text;
};

void PrintTo(const PlaceCase& row, std::ostream* out) {
    *out << row.title;
}

class Place : public testing::TestWithParam<PlaceCase> {};

TEST_P(Place, IsWrittenSoInBothSentences) {
    const std::string sentences = positionSentences(GetParam().position, kTime);
    const std::size_t first = sentences.find(GetParam().text);
    ASSERT_NE(first, std::string::npos) << sentences;
    EXPECT_NE(sentences.find(GetParam().text, first + 1), std::string::npos) << sentences;
}

INSTANTIATE_TEST_SUITE_P(
    Places, Place,
    testing::Values(PlaceCase{"origin", {0, 0}, ",0000.0000,N,00000.0000,E,"},
                    PlaceCase{"southWest", {-33.5, -70.25}, ",3330.0000,S,07015.0000,W,"},
                    PlaceCase{"corner", {90, 180}, ",9000.0000,N,18000.0000,E,"},
                    PlaceCase{"otherCorner", {-90, -180}, ",9000.0000,S,18000.0000,W,"},
                    PlaceCase{"minutesRoundUp", {9.99999999, 99.99999999}, ",1000.0000,N,10000.0000,E,"},
                    PlaceCase{"noSouthernZero", {-1e-9, -1e-9}, ",0000.0000,N,00000.0000,E,"}),
    titleOf);

TEST(PositionSentences, CarryTheSumOfTheirCharacters) {
    for (const double degrees : {0.0, 1.5, -45.125, 89.9999}) {
        const std::string sentences = positionSentences({degrees, -degrees}, kTime + 86400);
        std::size_t start = 0;
        int count = 0;
        for (; start < sentences.size(); ++count) {
            ASSERT_EQ(sentences[start], '$');
            const std::size_t star = sentences.find('*', start);
            ASSERT_NE(star, std::string::npos);
            int sum = 0;
            for (std::size_t i = start + 1; i < star; ++i)
                sum ^= sentences[i];
            EXPECT_EQ(std::stoi(sentences.substr(star + 1, 2), nullptr, 16), sum);
            EXPECT_EQ(sentences.substr(star + 3, 2), "\r\n");
            EXPECT_LE(star + 5 - start, 82u); // the longest sentence that the standard allows
            start = star + 5;
        }
        EXPECT_EQ(count, 2);
    }
}

TEST(Position, IsOnEarthUpToThePolesAndTheDateLine) {
    EXPECT_TRUE(isOnEarth({90, 180}));
    EXPECT_TRUE(isOnEarth({-90, -180}));
    EXPECT_FALSE(isOnEarth({90.0001, 0}));
    EXPECT_FALSE(isOnEarth({0, -180.0001}));
    EXPECT_FALSE(isOnEarth({std::numeric_limits<double>::quiet_NaN(), 0}));
}

} // namespace
} // namespace headunit
