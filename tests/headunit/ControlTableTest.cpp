#include "control/ControlTable.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace headunit {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::Truly;

/// What stands between backquotes in the first column of the documented table of words:
/// "modem signal N".
std::vector<std::string> documentedForms() {
    std::ifstream document(HEADUNIT_DOCUMENT);
    std::string line;
    while (std::getline(document, line) && line != "| Words | Effect |")
        continue;
    std::vector<std::string> forms;
    while (std::getline(document, line) && line[0] == '|') {
        std::istringstream cell(line.substr(0, line.find(" | ")));
        std::string form;
        while (std::getline(cell, form, '`') && std::getline(cell, form, '`'))
            forms.push_back(form);
    }
    return forms;
}

/// The words that come to a handler: "modem signal".
std::vector<std::string> handledWords() {
    std::vector<std::string> all;
    for (const ControlRow& row : controlTable()) {
        if (row.keys.empty())
            all.emplace_back(row.word);
        for (const ControlRow& key : row.keys)
            all.push_back(std::string(row.word).append(" ").append(key.word));
    }
    return all;
}

bool beginsWith(const std::string& form, const std::string& words) {
    return (form + " ").compare(0, words.size() + 1, words + " ") == 0;
}

void expectWhole(const ControlRows& rows) {
    std::vector<std::string_view> words;
    for (const ControlRow& row : rows) {
        EXPECT_THAT(words, Not(Contains(row.word)));
        words.push_back(row.word);
        EXPECT_LE(row.fewest, row.most) << row.word;
        EXPECT_EQ(row.most == 0, row.form.empty()) << row.word;
        EXPECT_EQ(row.handler == nullptr, !row.keys.empty()) << row.word;
        EXPECT_TRUE(row.keys.empty() || row.fewest > 0) << row.word << " has keys and wants none";
        expectWhole(row.keys);
    }
}

TEST(ControlTable, HasWholeRowsAndEachWordOnce) {
    EXPECT_THAT(controlTable(), Not(IsEmpty()));
    expectWhole(controlTable());
}

TEST(ControlTable, IsWhatTheHelpTells) {
    EXPECT_EQ(
        controlHelp(),
        "unplug LINE, plug LINE, state, position LATITUDE LONGITUDE, modem "
        "signal|registration|pin|late|silent VALUE, loopback on|off, receiver on|off; i2c "
        "manager|late|result|chip|temperature|pins|eeprom VALUE, wlan "
        "manager|late|result|refuse|size VALUE, bluetooth manager|late|silent|fail|send VALUE, "
        "display fail|late VALUE, insert MEDIUM, remove MEDIUM, ports, port NAME "
        "0|1|unreadable|gone|back, audio active|inactive|stopped; LINE is station, loopback, modem "
        "or receiver, MEDIUM is sda0, sdb0, cd0, umass0, mnand0 or fs0");
}

TEST(ControlTable, IsDocumented) {
    const std::vector<std::string> forms = documentedForms();
    for (const std::string& words : handledWords())
        EXPECT_THAT(forms, Contains(Truly([&](const auto& form) { return beginsWith(form, words); })))
            << words << " is not documented";
}

TEST(ControlTable, HasAllThatIsDocumented) {
    const std::vector<std::string> known = handledWords();
    for (const std::string& form : documentedForms())
        EXPECT_THAT(known, Contains(Truly([&](const auto& words) { return beginsWith(form, words); })))
            << form << " is documented";
}

} // namespace
} // namespace headunit
