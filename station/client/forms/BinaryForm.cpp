#include "client/forms/BinaryForm.h"

#include <algorithm>

#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "client/forms/SimpleForms.h"

namespace station {

namespace {

struct Entry {
    std::string_view name;
    BinaryForm (*form)(const std::vector<std::string>& arguments);
    std::vector<std::string_view> usages;
};

/// For a command whose arguments are read as the unit reads them.
template <BinaryForm (*form)(const CommandArguments&)>
BinaryForm of(const std::vector<std::string>& arguments) {
    return form(CommandArguments(arguments));
}

const std::vector<Entry>& entries() {
    static const std::vector<Entry> kEntries = {
        {"ack", ackForm, {"ack"}},
        {"exec", execForm, {"exec command SECONDS TEXT"}},
        {"i2c",
         of<i2cForm>,
         {"i2c read BUS COUNT ADDRESS [DATA]", "i2c write BUS ADDRESS DATA", "i2c getattributes BUS ID",
          "i2c setattributes BUS ID VALUE"}},
        {"memory",
         of<memoryForm>,
         {"memory read WIDTH COUNT ADDRESS", "memory write WIDTH COUNT ADDRESS DATA",
          "memory write 8bitcrc COUNT ADDRESS DATA CHECKSUM"}},
        {"serial",
         of<serialForm>,
         {"serial open N BAUD FLAGS", "serial open 240|241", "serial close N", "serial send N DATA",
          "serial get N COUNT", "serial getall N"}},
        {"status", statusForm, {"status [01|02]"}},
    };
    return kEntries;
}

const Entry* findEntry(std::string_view name) {
    for (const Entry& entry : entries())
        if (entry.name == name)
            return &entry;
    return nullptr;
}

std::string allNames() {
    std::string names;
    for (const std::string_view name : binaryFormNames())
        names += (names.empty() ? "" : ", ") + std::string(name);
    return names;
}

} // namespace

std::vector<std::string_view> binaryFormNames() {
    std::vector<std::string_view> names = simpleFormNames();
    for (const Entry& entry : entries())
        names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string_view> binaryUsages(std::string_view name) {
    const Entry* entry = findEntry(name);
    return entry != nullptr ? entry->usages : simpleUsages(name);
}

void refuseArguments(std::string_view name, std::string_view note) {
    const std::vector<std::string_view> usages = binaryUsages(name);
    std::string text(name);
    text += usages.size() == 1 ? " has one binary form: " : " has the binary forms ";
    for (std::size_t at = 0; at < usages.size(); ++at) {
        if (at != 0)
            text += at + 1 == usages.size() ? " and " : ", ";
        text += usages[at];
    }
    refuseForm(text.append(note));
}

BinaryForm binaryForm(std::string_view name, const std::vector<std::string>& arguments) {
    if (const Entry* entry = findEntry(name))
        return entry->form(arguments);
    for (const std::string_view simple : simpleFormNames())
        if (simple == name)
            return simpleForm(name, CommandArguments(arguments));
    refuseForm("'" + std::string(name) + "' has no binary form here (there is one for " + allNames() +
               "); send its frame with raw \"hex(...)\", or " + kUseAscii);
}

} // namespace station
