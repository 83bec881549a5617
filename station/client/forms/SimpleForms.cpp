#include "client/forms/SimpleForms.h"

#include "client/forms/AnswerTexts.h"
#include "client/forms/FormRow.h"
#include "client/forms/Forms.h"
#include "wire/Catalogue.h"

namespace station {

namespace {

AnswerText done() {
    return doneText();
}

/// How many bytes were moved.
AnswerText movedBytes() {
    return base64TextOf(4);
}

AnswerText checksum() {
    return base64TextOf(4, "cksum ");
}

/// A port's number and its attributes.
AnswerText onePort() {
    return hexTextOf(2);
}

/// The number of ports in two bytes, then two ports a byte.
AnswerText allPorts() {
    return [](std::string_view payload) {
        constexpr std::size_t kCountBytes = 2;
        if (payload.size() < kCountBytes)
            checkLength(payload, kCountBytes);
        const std::size_t ports = static_cast<std::size_t>(static_cast<unsigned char>(payload[0])) << 8 |
                                  static_cast<unsigned char>(payload[1]);
        checkLength(payload, kCountBytes + (ports + 1) / 2);
        return hexText(payload);
    };
}

constexpr FormRow kRows[] = {
    {"audio activate", "E 80 01", done},
    {"audio deactivate", "E 80 00", done},
    {"blockdev open TYPE ID", "m TYPE ID 01", done},
    {"blockdev close TYPE ID", "m TYPE ID 02", done},
    {"blockdev read TYPE ID BLOCK COUNT OFFSET", "m TYPE ID 03 BLOCK:4 COUNT:4 OFFSET:4", movedBytes},
    {"blockdev write TYPE ID BLOCK COUNT OFFSET", "m TYPE ID 04 BLOCK:4 COUNT:4 OFFSET:4", movedBytes},
    {"diag cksum TYPE OFFSET LENGTH", "D 09 TYPE OFFSET:4 LENGTH:4", checksum},
    {"graphic display OUTPUT PICTURE ...", "G A0 OUTPUT PICTURE", done},
    {"graphic capture INPUT OUTPUT ...", "G A1 00 INPUT OUTPUT", done},
    {"port read N", "p E3 01 N", onePort},
    {"port getattributes ...", "p E3 00", allPorts},
    {"port write N LEVEL", "P E3 01 N LEVEL:level", done},
};

constexpr bool areWhole() {
    for (const FormRow& row : kRows)
        if (!row.isWhole())
            return false;
    return true;
}

static_assert(areWhole(), "a field of a frame is none of its usage, or is named like a byte");

constexpr bool isListed(const FormRow& row) {
    for (const wire::Command& command : wire::kCatalogue)
        if (command.name == row.name() && command.ids.find(row.id()) != std::string_view::npos)
            return true;
    return false;
}

constexpr bool areListed() {
    for (const FormRow& row : kRows)
        if (!isListed(row))
            return false;
    return true;
}

static_assert(areListed(), "wire/Catalogue.h has no command of a row's name and id");

} // namespace

std::vector<std::string_view> simpleFormNames() {
    std::vector<std::string_view> names;
    for (const FormRow& row : kRows)
        if (names.empty() || names.back() != row.name())
            names.push_back(row.name());
    return names;
}

std::vector<std::string_view> simpleUsages(std::string_view name) {
    std::vector<std::string_view> usages;
    for (const FormRow& row : kRows)
        if (row.name() == name)
            usages.push_back(row.usage.substr(0, row.usage.find(" ...")));
    return usages;
}

BinaryForm simpleForm(std::string_view name, const CommandArguments& arguments) {
    for (const FormRow& row : kRows)
        if (row.name() == name && row.takes(arguments))
            return row.form(arguments);
    refuseArguments(name);
}

} // namespace station
