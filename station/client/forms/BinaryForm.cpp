#include "client/forms/BinaryForm.h"

#include <algorithm>
#include <array>

#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"
#include "client/forms/SimpleForms.h"

namespace station {

namespace {

struct Entry {
    std::string_view name;
    BinaryForm (*form)(const std::vector<std::string>& arguments);
};

/// For a command whose arguments are read as the unit reads them.
template <BinaryForm (*form)(const CommandArguments&)>
BinaryForm of(const std::vector<std::string>& arguments) {
    return form(CommandArguments(arguments));
}

constexpr std::array kForms = {
    Entry{"ack", ackForm},           Entry{"exec", execForm},         Entry{"i2c", of<i2cForm>},
    Entry{"memory", of<memoryForm>}, Entry{"serial", of<serialForm>}, Entry{"status", statusForm},
};

std::string allNames() {
    std::string names;
    for (const std::string_view name : binaryFormNames())
        names += (names.empty() ? "" : ", ") + std::string(name);
    return names;
}

} // namespace

std::vector<std::string_view> binaryFormNames() {
    std::vector<std::string_view> names = simpleFormNames();
    for (const Entry& entry : kForms)
        names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

BinaryForm binaryForm(std::string_view name, const std::vector<std::string>& arguments) {
    for (const Entry& entry : kForms)
        if (entry.name == name)
            return entry.form(arguments);
    for (const std::string_view simple : simpleFormNames())
        if (simple == name)
            return simpleForm(name, CommandArguments(arguments));
    refuseForm("'" + std::string(name) + "' has no binary form here (there is one for " + allNames() +
               "); send its frame with raw \"hex(...)\", or " + kUseAscii);
}

} // namespace station
