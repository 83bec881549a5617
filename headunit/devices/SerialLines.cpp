#include "devices/SerialLines.h"

#include <string>

#include "unit/NameList.h"

namespace headunit {

void SerialLines::install(UnitTree& tree) {
    for (SerialLine* line : all()) {
        try {
            line->install(tree);
        } catch (const UnitError& error) {
            throw UnitError(std::string(line->name()) + " line: " + error.what());
        }
    }
}

SerialLine& SerialLines::named(const std::string& name) {
    for (SerialLine* line : all())
        if (line->name() == name)
            return *line;
    throw notOneOf(kNames, name);
}

} // namespace headunit
