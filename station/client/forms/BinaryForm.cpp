#include "client/forms/BinaryForm.h"

#include <array>

#include "client/forms/Forms.h"
#include "client/forms/Refusal.h"

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
    Entry{"ack", ackForm},
    Entry{"audio", of<audioForm>},
    Entry{"blockdev", of<blockdevForm>},
    Entry{"diag", of<diagForm>},
    Entry{"exec", execForm},
    Entry{"graphic", of<graphicForm>},
    Entry{"i2c", of<i2cForm>},
    Entry{"memory", of<memoryForm>},
    Entry{"port", of<portForm>},
    Entry{"serial", of<serialForm>},
    Entry{"status", statusForm},
};

std::string allNames() {
    std::string names;
    for (const Entry& entry : kForms)
        names += (names.empty() ? "" : ", ") + std::string(entry.name);
    return names;
}

} // namespace

BinaryForm binaryForm(std::string_view name, const std::vector<std::string>& arguments) {
    for (const Entry& entry : kForms)
        if (entry.name == name)
            return entry.form(arguments);
    refuseForm("'" + std::string(name) + "' has no binary form here (there is one for " + allNames() +
               "); send its frame with raw \"hex(...)\", or " + kUseAscii);
}

} // namespace station
