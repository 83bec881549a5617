// What reaches the two tools: which command lines, in which order, and what becomes of a failing one.
#include <cstdint>
#include <cstdlib>

#include "commands/GCmd.h"
#include "commands/cReadCmd.h"
#include "core/Diagnostics.h"

namespace {

enum Code : std::uint32_t {
    kInvalidOutput = 0x49000002,
    kInvalidIndex = 0x49000004,
    kInvalidInput = 0x49000008,
};

constexpr unsigned char kLvds0 = 0;
constexpr unsigned char kSecondVideoOutput = 1;
constexpr unsigned char kSecondPictureOutput = 2;
constexpr unsigned char kLvds0Display = 0;
constexpr unsigned char kSecondDisplay = 4;

constexpr char kViewer[] = "/vrk/bin/apps/showimage";
constexpr char kDisplayManager[] = "/vrk/bin/apps/dmdt";
constexpr unsigned long long kToolSeconds = 5;

constexpr char kMakeBlackLayer[] = " dc 100 -9999";
constexpr char kBlackLayer[] = "100";
constexpr char kShowLayer[] = " sc %d %s";
constexpr char kHideFirst[] = " h 0";
constexpr char kHideSecond[] = " h 4";
constexpr char kSelect[] = " si ";
constexpr char kShow[] = " s %d";
constexpr char kQuit[] = " q";

constexpr char kLibraryVariable[] = "LD_LIBRARY_PATH";
constexpr char kLibraryPath[] = "/root/lib-target:/vrk/lib:/armle/lib:/armle/lib/dll";
constexpr char kConfigurationVariable[] = "IPL_CONFIG_DIR";
constexpr char kConfigurationPath[] = "/etc/vrk/production";

constexpr char kNoSuchOutput[] = "Output Channel for Test picture out of range for %s variant";
constexpr char kNoSuchPicture[] = "Test picture index out of range";
constexpr char kNoSuchVideoOutput[] = "The output channel : %d is invalid for video";
constexpr char kNoSuchVideoInput[] = "The input channel : %d is invalid for video";
constexpr char kNoLibraryPath[] =
    "Error when setting LD_LIBRARY_PATH env. variable forshowimage application";
constexpr char kNoConfiguration[] =
    "Error when setting  env. variable IPL_CONFIG_DIR forshowimage application";
constexpr char kOddChannel[] = "GCmd: Failure in callig %s function, invalid output channel: %u";
constexpr char kTakesLvds0[] = "GCmd: Choosing LVDS0 as default output channel";

ProcessResponse done() {
    return ProcessResponse(ProcessResponse::kSuccess);
}

ProcessResponse runTool(const char* tool, const std::string& arguments) {
    std::string commandLine = tool + arguments;
    return GCmd::executeStringStream(&commandLine);
}

unsigned char displayOf(unsigned char channel, const char* function) {
    if (channel == kSecondPictureOutput)
        return kSecondDisplay;
    if (channel != kLvds0) {
        printDiagnostic(kOddChannel, function, static_cast<unsigned>(channel));
        printDiagnostic(kTakesLvds0);
    }
    return kLvds0Display;
}

} // namespace

ProcessResponse GCmd::executeStringStream(std::string* commandLine) {
    return *cReadCmd::getInstance()->executeCommand(kToolSeconds, commandLine->c_str());
}

ProcessResponse GCmd::setEnvVar() {
    constexpr int kOverwrite = 1;
    if (::setenv(kLibraryVariable, kLibraryPath, kOverwrite) != 0)
        return ProcessResponse(ProcessResponse::kGenericError, kNoLibraryPath);
    if (::setenv(kConfigurationVariable, kConfigurationPath, kOverwrite) != 0)
        return ProcessResponse(ProcessResponse::kGenericError, kNoConfiguration);
    return done();
}

bool GCmd::isOutChannelValid(unsigned char channel) const {
    if (channel == kSecondPictureOutput)
        return m_variant == PAG || m_variant == G22 || m_variant == G21;
    return channel == kLvds0;
}

bool GCmd::isOutChannelForVideoValid(unsigned char channel) {
    return channel == kLvds0 || channel == kSecondVideoOutput;
}

bool GCmd::isInChannelValid(unsigned char channel) {
    return findRoute(channel) != nullptr;
}

const GCmd::Route* GCmd::findRoute(unsigned char input) {
    static constexpr Route kRoutes[] = {
        {3, " dc 99 -125", "99", &GCmd::m_isInput3Prepared, false},
        {0, " dc 98 47", "98", &GCmd::m_isInput0Prepared, false},
        {2, " dc 97 48", "97", &GCmd::m_isInput2Prepared, true}, // the only one, on purpose
    };
    for (const Route& route : kRoutes) {
        if (route.input == input)
            return &route;
    }
    return nullptr;
}

ProcessResponse GCmd::displayTestImage(unsigned char channel, unsigned char index) {
    if (!isOutChannelValid(channel))
        return ProcessResponse(kInvalidOutput, kNoSuchOutput, m_variants.at(m_variant).c_str());
    if (index >= kScreens)
        return ProcessResponse(kInvalidIndex, kNoSuchPicture);
    const unsigned char display = displayOf(channel, "displayTestImage");
    if (ProcessResponse result = switchToBlack(display); failed(result))
        return result;
    if (ProcessResponse result = startViewer(); failed(result))
        return result;
    ProcessResponse result = showPicture(index, display);
    if (failed(result))
        quitShowimage();
    return result;
}

ProcessResponse GCmd::switchToBlack(unsigned char display) {
    if (!isOutChannelForVideoValid(display))
        return done();
    if (ProcessResponse result = setEnvVar(); failed(result))
        return result;
    if (ProcessResponse result = makeLayer(m_isBlackPrepared, kMakeBlackLayer, false); failed(result))
        return result;
    return runTool(kDisplayManager, string_format(kShowLayer, display, kBlackLayer));
}

ProcessResponse GCmd::makeLayer(bool& isPrepared, const char* arguments, bool isRetried) {
    if (isPrepared)
        return done();
    isPrepared = !isRetried;
    ProcessResponse result = runTool(kDisplayManager, arguments);
    if (!failed(result))
        isPrepared = true;
    return result;
}

ProcessResponse GCmd::startViewer() {
    if (m_isViewerRunning)
        return done();
    if (ProcessResponse result = setEnvVar(); failed(result))
        return result;
    ProcessResponse result = runTool(kViewer, "");
    // Whatever came of it: a start that failed may have left a viewer behind, which has to be ended.
    m_isViewerRunning = true;
    return result;
}

ProcessResponse GCmd::showPicture(unsigned char index, unsigned char display) {
    for (const char* hide : {kHideFirst, kHideSecond}) {
        if (ProcessResponse result = runTool(kViewer, hide); failed(result))
            return result;
    }
    std::string path;
    if (ProcessResponse result = unzipTestScreen(index, path); failed(result))
        return result;
    if (ProcessResponse result = runTool(kViewer, kSelect + path); failed(result))
        return result;
    return runTool(kViewer, string_format(kShow, display));
}

ProcessResponse GCmd::quitShowimage() {
    m_isViewerRunning = false;
    return runTool(kViewer, kQuit);
}

ProcessResponse GCmd::captureFrame(unsigned char input, unsigned char output) {
    if (m_isViewerRunning)
        quitShowimage();
    if (!isOutChannelForVideoValid(output))
        return ProcessResponse(kInvalidOutput, kNoSuchVideoOutput, output);
    const Route* const route = findRoute(input);
    if (route == nullptr)
        return ProcessResponse(kInvalidInput, kNoSuchVideoInput, input);
    if (ProcessResponse result = setEnvVar(); failed(result))
        return result;
    const unsigned char display = displayOf(output, "captureFrame");
    if (ProcessResponse result = makeLayer(this->*route->isPrepared, route->makeLayer, route->isRetried);
        failed(result))
        return result;
    return runTool(kDisplayManager, string_format(kShowLayer, display, route->layer));
}
