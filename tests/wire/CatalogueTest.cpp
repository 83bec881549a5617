// What a command is called in the documents and in the station is what the catalogue says. A message
// names the file to mend.
#include "wire/Catalogue.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "client/forms/BinaryForm.h"
#include "wire/Frame.h"

namespace {

using testing::HasSubstr;

std::string contentOf(const std::string& file) {
    std::ifstream stream(file);
    EXPECT_TRUE(stream) << file;
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

/// How a page writes the ids, one behind the other.
std::string joined(std::string_view ids, const std::function<std::string(char)>& written) {
    std::string text;
    for (const char id : ids)
        text += (text.empty() ? "" : ", ") + written(id);
    return text;
}

bool isLetter(char id) {
    return id >= 'A';
}

std::string hex(char id) {
    char text[3];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(id));
    return text;
}

std::string code(char id) {
    return isLetter(id) ? std::string("`") + id + '`' : hex(id);
}

std::string hexAndCode(char id) {
    return isLetter(id) ? hex(id) + " (" + code(id) + ')' : hex(id);
}

std::string bare(char id) {
    return isLetter(id) ? std::string(1, id) : hex(id);
}

/// A page that lists the commands, each in a line.
struct Page {
    const char* file;
    std::string heading; ///< the line in front of the list
    std::function<std::string(const wire::Command&)> line;
};

std::string tableRow(const wire::Command& command, const std::function<std::string(char)>& id) {
    return "| `" + std::string(command.name) + "` | " + joined(command.ids, id) + " | " +
           std::string(command.summary) + " |";
}

const Page kPages[] = {
    {"README.md", "| Name | Id | What it does |\n|---|---|---|\n",
     [](const wire::Command& command) { return tableRow(command, code); }},
    {"docs/protocol.md", "| Name | Id | What it does |\n|---|---|---|\n",
     [](const wire::Command& command) { return tableRow(command, hexAndCode); }},
    {"docs/man/production.8", ".It Sy Name Ta Sy Id Ta Sy What it does\n",
     [](const wire::Command& command) {
         return ".It " + std::string(command.name) + " Ta " + joined(command.ids, bare) + " Ta " +
                std::string(command.summary);
     }},
};

TEST(CatalogueTest, IsListedByThePagesLineByLine) {
    for (const Page& page : kPages) {
        std::string list = page.heading;
        for (const wire::Command& command : wire::kCatalogue)
            list += page.line(command) + '\n';
        const std::string content = contentOf(std::string(PROJECT_FOLDER "/") + page.file);
        const std::size_t begin = content.find(page.heading);
        ASSERT_NE(begin, std::string::npos) << page.file;
        EXPECT_EQ(content.substr(begin, list.size()), list) << "to be mended in " << page.file;
        EXPECT_THAT(content.substr(begin + list.size(), 1), testing::AnyOf("\n", "."))
            << page.file << " lists more";
    }
}

TEST(CatalogueTest, HasASectionOfTheProtocolForEachCommand) {
    const std::string protocol = contentOf(PROJECT_FOLDER "/docs/protocol.md");
    for (const wire::Command& command : wire::kCatalogue) {
        const std::string heading = "\n### " + std::string(command.name) + '\n';
        const std::size_t begin = protocol.find(heading);
        ASSERT_NE(begin, std::string::npos) << heading << "to be written in docs/protocol.md";
        const std::size_t end = protocol.find("\n### ", begin + heading.size());
        const std::string section = protocol.substr(begin, end - begin);
        for (const char* exchange : {"\n```exchange tcp\n", "\n```exchange frames\n"})
            EXPECT_TRUE(section.find(exchange) != std::string::npos)
                << exchange << "to be written in docs/protocol.md under" << heading;
    }
}

TEST(CatalogueTest, EveryCodeOfASectionIsListedAmongTheStatusCodes) {
    const std::string protocol = contentOf(PROJECT_FOLDER "/docs/protocol.md");
    const std::size_t list = protocol.find("\n## Status codes\n");
    const std::size_t sections = protocol.find("\n## Commands\n");
    ASSERT_LT(list, sections);
    ASSERT_NE(sections, std::string::npos);
    const std::string listed = protocol.substr(list, sections - list);
    constexpr char kRow[] = "\n| 0x";
    std::size_t at = protocol.find(kRow, sections);
    ASSERT_NE(at, std::string::npos);
    for (; at != std::string::npos; at = protocol.find(kRow, at + 1)) {
        const std::string row = protocol.substr(at, protocol.find(" |", at + 2) - at);
        EXPECT_TRUE(listed.find(row + " |") != std::string::npos)
            << row << "\nto be listed in docs/protocol.md under \"Status codes\"";
    }
}

TEST(CatalogueTest, HasAFormOfTheStationForEachCommand) {
    std::vector<std::string_view> names;
    for (const wire::Command& command : wire::kCatalogue)
        names.push_back(command.name);
    EXPECT_EQ(station::binaryFormNames(), names)
        << "to be mended in station/client/forms/SimpleForms.cpp, or BinaryForm.cpp beside it";
}

TEST(CatalogueTest, IsShownByTheStationsHelpWithTheFormsOfEachCommand) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(STATION_PROGRAM " --help", "r"), ::pclose);
    ASSERT_NE(pipe, nullptr);
    std::string help;
    std::array<char, 4096> part{};
    while (const std::size_t count = std::fread(part.data(), 1, part.size(), pipe.get()))
        help.append(part.data(), count);
    for (const wire::Command& command : wire::kCatalogue) {
        EXPECT_THAT(help, HasSubstr(command.summary));
        const std::vector<std::string_view> usages = station::binaryUsages(command.name);
        EXPECT_FALSE(usages.empty()) << command.name;
        for (const std::string_view usage : usages)
            EXPECT_THAT(help, HasSubstr("\n      station " + std::string(usage) + '\n'));
    }
}

TEST(CatalogueTest, LeavesTheIdOfDebugFramesFree) {
    for (const wire::Command& command : wire::kCatalogue)
        EXPECT_EQ(command.ids.find(wire::kDebugId), std::string_view::npos)
            << command.name << ": wire/Catalogue.h; stations take its answers for debug frames";
}

TEST(CatalogueTest, IsInTheOrderOfTheNames) {
    const auto isBefore = [](const wire::Command& left, const wire::Command& right) {
        return left.name < right.name;
    };
    EXPECT_TRUE(std::is_sorted(wire::kCatalogue.begin(), wire::kCatalogue.end(), isBefore));
}

} // namespace
