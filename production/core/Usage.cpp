#include "core/Usage.h"

#include <cstdio>
#include <string_view>

#include "core/BuildStamp.h"

namespace {

// Where tools find it that cannot run the daemon.
[[gnu::section(".usage"), gnu::used]] const char kUsage[] =
#include "UsageText.inc"
    ;

constexpr char kVersion[] = "production, build %s, protocol version %u\n";

} // namespace

bool Usage::answer(int argc, const char* const* argv) {
    const std::string_view question = argc > 1 ? argv[1] : "";
    if (question == "--help" || question == "-h") {
        std::fputs(kUsage, stdout);
        return true;
    }
    if (question == "--version" || question == "-V") {
        std::printf(kVersion, getDateTimeString(), getProductionVersion());
        return true;
    }
    return false;
}
