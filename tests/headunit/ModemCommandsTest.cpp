#include "devices/ModemCommands.h"

#include <gmock/gmock.h>

#include <ostream>
#include <vector>

#include "support/Rows.h"

namespace headunit {
namespace {

using Card = ModemCommands::Card;

std::string echoOf(ModemCommands& modem, const std::string& text) {
    std::string echo;
    for (const char character : text)
        echo += modem.take(character).echo;
    return echo;
}

std::string answerOf(ModemCommands& modem, const std::string& text) {
    std::string answer;
    for (const char character : text)
        answer += modem.take(character).answer;
    return answer;
}

struct Exchange {
    const char* title;
    std::string sent;
    std::string answer;
};

void PrintTo(const Exchange& row, std::ostream* out) {
    *out << row.title;
}

class ModemExchange : public testing::TestWithParam<Exchange> {};

TEST_P(ModemExchange, IsAnsweredSo) {
    ModemCommands modem;
    EXPECT_EQ(answerOf(modem, GetParam().sent), GetParam().answer);
}

std::string lines(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += "\r\n" + text + "\r\n";
    return all;
}

const std::string kOk = lines({"OK"});
const std::string kError = lines({"ERROR"});
const std::string kIdentity = "\r\nSimulated Modules\r\nNAD-1\r\n01.00\r\n";

INSTANTIATE_TEST_SUITE_P(
    Words, ModemExchange,
    testing::Values(
        Exchange{"attention", "AT\r", kOk}, Exchange{"lowerCase", "at\r", kOk},
        Exchange{"mixedPrefix", "At\r", ""}, Exchange{"emptyLine", "\r", ""},
        Exchange{"noise", "hello\r", ""}, Exchange{"noiseBefore", "xxAT\r", kOk},
        Exchange{"lineFeeds", "\nAT\n\r\n", kOk}, Exchange{"backspace", "ATX\b\r", kOk},
        Exchange{"highBit", "\xC1\xD4\x8D", kOk}, Exchange{"blanks", "AT I 0\r", kIdentity + kOk},
        Exchange{"identity", "ATI\r", kIdentity + kOk}, Exchange{"otherIdentity", "ATI1\r", kError},
        Exchange{"echoValue", "ATE2\r", kError},
        Exchange{"manufacturer", "AT+CGMI\r", lines({"Simulated Modules", "OK"})},
        Exchange{"model", "AT+CGMM\r", lines({"NAD-1", "OK"})},
        Exchange{"revision", "AT+CGMR\r", lines({"01.00", "OK"})},
        Exchange{"serialNumber", "AT+CGSN\r", lines({"004999010640000", "OK"})},
        Exchange{"manufacturerAlias", "AT+GMI\r", lines({"Simulated Modules", "OK"})},
        Exchange{"modelAlias", "AT+GMM\r", lines({"NAD-1", "OK"})},
        Exchange{"revisionAlias", "AT+GMR\r", lines({"01.00", "OK"})},
        Exchange{"serialNumberAlias", "AT+GSN\r", lines({"004999010640000", "OK"})},
        Exchange{"identityTest", "AT+CGMI=?\r", kOk}, Exchange{"identityRead", "AT+CGMI?\r", kError},
        Exchange{"signal", "AT+CSQ\r", lines({"+CSQ: 20,99", "OK"})},
        Exchange{"signalTest", "AT+CSQ=?\r", lines({"+CSQ: (0-31,99),(99)", "OK"})},
        Exchange{"signalRead", "AT+CSQ?\r", kError}, Exchange{"signalSet", "AT+CSQ=1\r", kError},
        Exchange{"registration", "AT+CREG?\r", lines({"+CREG: 0,1", "OK"})},
        Exchange{"registrationTest", "AT+CREG=?\r", lines({"+CREG: (0,1)", "OK"})},
        Exchange{"registrationSet", "AT+CREG=1;+CREG?\r", lines({"+CREG: 1,1", "OK"})},
        Exchange{"registrationSetWrong", "AT+CREG=2\r", kError},
        Exchange{"registrationAlone", "AT+CREG\r", kError},
        Exchange{"card", "AT+CPIN?\r", lines({"+CPIN: READY", "OK"})},
        Exchange{"cardTest", "AT+CPIN=?\r", kOk}, Exchange{"cardAlone", "AT+CPIN\r", kError},
        Exchange{"cardNeedsNoPin", "AT+CPIN=\"1234\"\r", kError},
        Exchange{"functionality", "AT+CFUN?\r", lines({"+CFUN: 1", "OK"})},
        Exchange{"functionalityTest", "AT+CFUN=?\r", lines({"+CFUN: (0,1,4)", "OK"})},
        Exchange{"functionalitySet", "AT+CFUN=4;+CFUN?\r", lines({"+CFUN: 4", "OK"})},
        Exchange{"functionalityWrong", "AT+CFUN=9\r", kError},
        Exchange{"functionalityAlone", "AT+CFUN\r", kError},
        Exchange{"radioOff", "AT+CFUN=0;+CSQ;+CREG?\r", lines({"+CSQ: 99,99", "+CREG: 0,0", "OK"})},
        Exchange{"unknownWord", "AT+NO\r", kError}, Exchange{"unknownLetter", "ATX\r", kError},
        Exchange{"strangeQuestion", "AT+CSQ?x\r", kError},
        Exchange{"severalOnALine", "AT+CGMM;+CSQ\r", lines({"NAD-1", "+CSQ: 20,99", "OK"})},
        Exchange{"lettersTogether", "ATE0I\r", kIdentity + kOk},
        Exchange{"wordAfterLetter", "ATE0+CGMM\r", lines({"NAD-1", "OK"})},
        Exchange{"letterAfterWord", "AT+CGMM;I\r", lines({"NAD-1"}) + kIdentity + kOk},
        Exchange{"stopsAtTheFirstError", "AT+CGMM;+NO;+CSQ\r", lines({"NAD-1", "ERROR"})},
        Exchange{"semicolonInQuotes", "AT+CREG=\"1;+CGMM\"\r", kError},
        Exchange{"again", "AT+CGMM\rA/", lines({"NAD-1", "OK", "NAD-1", "OK"})},
        Exchange{"againNothing", "A/", kOk},
        Exchange{"noResultCodes", "ATQ1\rAT+CGMM\rATX\rATQ0\r", lines({"NAD-1", "OK"})},
        Exchange{"codesAsNumbers", "ATV0\rAT+CGMM\rATX\rATV1\r", "0\rNAD-1\r\n0\r4\r" + kOk},
        Exchange{"defaults", "ATV0Q1\rATZ\rAT\r", kOk + kOk},
        Exchange{"longestLine", "AT" + std::string(510, ' ') + "\r", kOk},
        Exchange{"tooLongLine", "AT" + std::string(511, ' ') + "\r", kError},
        Exchange{"endlessLine", "AT" + std::string(100000, 'I') + "\rAT\r", kError + kOk}),
    titleOf);

TEST(ModemCommands, EchoesEveryCharacterUntilToldNotTo) {
    ModemCommands modem;
    EXPECT_EQ(echoOf(modem, "AT\r\n\b\xC1"), "AT\r\n\b\xC1");
    EXPECT_EQ(echoOf(modem, "\rATE0\r"), "\rATE0\r");
    EXPECT_EQ(echoOf(modem, "AT+CSQ\rATE1\r"), "");
    EXPECT_EQ(echoOf(modem, "AT\r"), "AT\r");
}

TEST(ModemCommands, AnswersOnlyAtTheLineEnd) {
    ModemCommands modem;
    for (const char character : std::string("AT+CSQ"))
        EXPECT_EQ(modem.take(character).answer, "");
    EXPECT_NE(modem.take('\r').answer, "");
}

TEST(ModemCommands, ForgetsALineThatHasBegun) {
    ModemCommands modem;
    answerOf(modem, "ATX");
    modem.forgetLine();
    EXPECT_EQ(answerOf(modem, "AT\r"), kOk);
}

TEST(ModemCommands, TellsTheStateThatWasSet) {
    ModemCommands modem;
    EXPECT_TRUE(modem.setSignal(0));
    EXPECT_TRUE(modem.setRegistration(5));
    EXPECT_EQ(answerOf(modem, "AT+CSQ;+CREG?\r"), lines({"+CSQ: 0,99", "+CREG: 0,5", "OK"}));
    EXPECT_TRUE(modem.setSignal(31));
    EXPECT_TRUE(modem.setRegistration(0));
    EXPECT_EQ(answerOf(modem, "AT+CSQ;+CREG?\r"), lines({"+CSQ: 31,99", "+CREG: 0,0", "OK"}));
    EXPECT_TRUE(modem.setSignal(99));
    EXPECT_EQ(answerOf(modem, "AT+CSQ\r"), lines({"+CSQ: 99,99", "OK"}));
}

TEST(ModemCommands, RefusesAStateThatThereIsNot) {
    ModemCommands modem;
    for (const int signal : {-1, 32, 98, 100})
        EXPECT_FALSE(modem.setSignal(signal)) << signal;
    for (const int registration : {-1, 6})
        EXPECT_FALSE(modem.setRegistration(registration)) << registration;
    EXPECT_EQ(answerOf(modem, "AT+CSQ;+CREG?\r"), lines({"+CSQ: 20,99", "+CREG: 0,1", "OK"}));
}

TEST(ModemCommands, ReportsARegistrationOnlyWhenThatIsWanted) {
    ModemCommands modem;
    EXPECT_EQ(modem.registrationReport(), "");
    answerOf(modem, "AT+CREG=1\r");
    modem.setRegistration(2);
    EXPECT_EQ(modem.registrationReport(), "\r\n+CREG: 2\r\n");
    answerOf(modem, "AT+CFUN=4\r");
    EXPECT_EQ(modem.registrationReport(), "");
}

TEST(ModemCommands, WantsAPinWhenTheCardDoes) {
    ModemCommands modem;
    modem.setCard(Card::wantsPin);
    EXPECT_EQ(answerOf(modem, "AT+CPIN?\r"), lines({"+CPIN: SIM PIN", "OK"}));
    for (const std::string pin : {"123", "123456789", "12a4", "\"1234", ""})
        EXPECT_EQ(answerOf(modem, "AT+CPIN=" + pin + "\r"), kError) << pin;
    EXPECT_EQ(answerOf(modem, "AT+CPIN=\"1234\"\r"), kOk);
    EXPECT_EQ(answerOf(modem, "AT+CPIN?\r"), lines({"+CPIN: READY", "OK"}));
}

TEST(ModemCommands, TellsABlockedAndAnAbsentCard) {
    ModemCommands modem;
    modem.setCard(Card::blocked);
    EXPECT_EQ(answerOf(modem, "AT+CPIN?\r"), lines({"+CPIN: SIM PUK", "OK"}));
    modem.setCard(Card::absent);
    EXPECT_EQ(answerOf(modem, "AT+CPIN?\r"), kError);
}

} // namespace
} // namespace headunit
