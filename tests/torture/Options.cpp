#include "Options.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "Row.h"

namespace {

constexpr char kUsage[] =
    "torture [--short | --long] [--seed N] [--row NAME]... [--list]\n"
    "Ill-treats the daemon of the simulated unit that it runs in, row by row; exits with 1 when one of\n"
    "them found it wanting. In short all of it takes some three minutes.\n";

bool isRow(const std::string& name) {
    const auto& rows = allRows();
    return std::any_of(rows.begin(), rows.end(), [&](const Row& row) { return row.name == name; });
}

/// Whether the whole of it is a number.
bool readNumber(const std::string& text, std::uint64_t& number) {
    char* end = nullptr;
    number = std::strtoull(text.c_str(), &end, 0);
    return !text.empty() && *end == '\0';
}

/// Whether the option, with its value where it has one, is understood; `at` is moved behind it.
bool take(Options& options, int argc, char** argv, int& at) {
    const std::string_view option = argv[at++];
    if (option == "--short" || option == "--long") {
        options.isLong = option == "--long";
        return true;
    }
    if (option == "--list")
        return options.list = true;
    if (at == argc)
        return false;
    const std::string value = argv[at++];
    if (option == "--seed")
        return readNumber(value, options.seed);
    return option == "--row" && isRow(value) && options.rows.insert(value).second;
}

} // namespace

std::optional<Options> optionsIn(int argc, char** argv) {
    Options options;
    for (int at = 1; at < argc;) {
        if (!take(options, argc, argv, at)) {
            std::cerr << kUsage;
            return std::nullopt;
        }
    }
    return options;
}
