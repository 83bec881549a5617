#include "commands/GCmd.h"

#include <new>

#include "commands/SharedTexts.h"
#include "commands/cReadCmd.h"
#include "core/Diagnostics.h"
#include "core/TokenText.h"
#include "runtime/OnlyObject.h"

namespace {

/// What a sub-command is called in both protocols, and what it takes.
struct Form {
    int code;
    const char* word;
    int frameLength;
    const char* tooFewTokens;
};
constexpr Form kDisplay = {0xA0, "display", 5, "Expected an output channel and a picture index!"};
constexpr Form kCapture = {0xA1, "capture", 6, "Expected an input channel and an output channel!"};

constexpr std::size_t kFewestTokens = 2;
constexpr std::size_t kTokens = 4;

constexpr char kImageVersion[] = "/mnt/app/img_ver.txt";

constexpr char kUnknownSubCommand[] = "Unknown 'G' subcommand: %02x";
constexpr char kUnknownWord[] = "Unknown 'graphic' subcommand: %s";
constexpr char kNoVariant[] = "  \u00BB The variant could not be detected using the default variant %s";

/// A text that does not fit into memory names no variant: the daemon has to start all the same.
std::string imageVersion() {
    try {
        return readFileToString(kImageVersion);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace

System::Mutex GCmd::s_singleton_mutex(System::Mutex::Normal);

GCmd* GCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new GCmd; });
}

GCmd::GCmd()
    : AbstractCmd('G', "graphic", true),
      m_variants{{PAG, "PAG"}, {G11, "G11"}, {G22, "G22"}, {G24, "G24"}, {G21, "G21"}} {
    m_variant = getVariant();
}

GCmd::variant_type GCmd::getVariant() const {
    const std::string text = imageVersion();
    for (const auto& [variant, name] : m_variants) {
        if (text.find(name) != std::string::npos)
            return variant;
    }
    printDiagnostic(kNoVariant, m_variants.at(PAG).c_str());
    return PAG;
}

Answer GCmd::run(const std::vector<unsigned char>* request) {
    const int subCommand = tavrin_getCommand(request);
    const bool isDisplay = subCommand == kDisplay.code;
    if (!isDisplay && subCommand != kCapture.code)
        return genericError(kUnknownSubCommand, static_cast<unsigned>(subCommand));
    if (tavrin_getRequestLen(request) != (isDisplay ? kDisplay : kCapture).frameLength)
        return genericError(SharedTexts::kInvalidLength);
    return successIn<ProcessResponseTavrin>(
        std::make_unique<ProcessResponse>(isDisplay ? displayTestImage((*request)[3], (*request)[4])
                                                    : captureFrame((*request)[4], (*request)[5])));
}

Answer GCmd::run(const std::vector<std::vector<char>>& tokens) {
    if (tokens.size() < kFewestTokens)
        return genericError(SharedTexts::kNoSubCommand);
    const bool isDisplay = beginsWith(tokens[1], kDisplay.word);
    if (!isDisplay && !beginsWith(tokens[1], kCapture.word))
        return genericError(kUnknownWord, tokenText(tokens[1]).c_str());
    if (tokens.size() < kTokens)
        return genericError("%s", (isDisplay ? kDisplay : kCapture).tooFewTokens);
    const auto first = static_cast<unsigned char>(ascii_getInt(tokens[2]));
    const auto second = static_cast<unsigned char>(ascii_getInt(tokens[3]));
    return successIn<ProcessResponseAscii>(std::make_unique<ProcessResponse>(
        isDisplay ? displayTestImage(first, second) : captureFrame(first, second)));
}
