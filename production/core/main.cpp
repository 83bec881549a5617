#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "core/BuildStamp.h"
#include "core/Diagnostics.h"
#include "core/Handler.h"
#include "core/StandardStream.h"
#include "core/StringFormat.h"
#include "core/Usage.h"
#include "devices/CommHandler.h"
#include "frontends/FlexListener.h"
#include "frontends/Listener.h"
#include "frontends/NetListener.h"
#include "platform/Descriptors.h"
#include "platform/Memory.h"

namespace {

constexpr char kLegalNotice[] = "For authorised use in production and service only.";

constexpr char kNoDispatcher[] = "No thread for the dispatcher, giving up";
constexpr char kNoSerial[] = "No thread for the serial front end";
constexpr char kNoNetwork[] = "No thread for the network front end";
constexpr char kNoFrontEnd[] = "No front end could be started, giving up";

// What a standard stream is given to take what was said last.
constexpr std::chrono::seconds kLastWordsPatience{1};

constexpr char kSupplierVariable[] = "FIRST_TIER_SUPPLIER";
constexpr int kStationChannel = 3;

/// Which protocol and driver serve the station's line.
struct Supplier {
    const char* word; ///< what the variable's value begins with
    Comm::PhysicalInterface interface;
    AbstractListener* (*create)();
};

AbstractListener* createBinary() {
    return new Listener(kStationChannel);
}

AbstractListener* createAscii() {
    return new FlexListener(kStationChannel);
}

constexpr Supplier kSuppliers[] = {
    {"TAVRIN", Comm::FileInterface, createBinary},
    {"FENOR", Comm::FileInterface, createBinary},
    {"SOLMED", Comm::StreamInterface, createAscii},
    {"GALVOR", Comm::StreamInterface, createAscii},
};

Supplier chosenSupplier() {
    const char* value = std::getenv(kSupplierVariable);
    for (const Supplier& supplier : kSuppliers)
        if (value != nullptr && std::strncmp(value, supplier.word, std::strlen(supplier.word)) == 0)
            return supplier;
    return kSuppliers[0];
}

void prepareProcess() {
    System::keepLittleFreedMemory();
    System::openStandardStreams();
    // A peer that has gone, or a shell that does not read
    // its commands, is an error to handle, not an end.
    std::signal(SIGPIPE, SIG_IGN);
    // A parent that ignored it would keep us from learning how a shell ended.
    std::signal(SIGCHLD, SIG_DFL);
}

bool start(AbstractListener& frontEnd, const char* complaint) {
    const bool isStarted = frontEnd.startOrDie();
    if (!isStarted)
        printDiagnostic("%s", complaint);
    return isStarted;
}

void writeLastWords() {
    StandardStream::output().flush(kLastWordsPatience);
    StandardStream::error().flush(kLastWordsPatience);
}

/// Ends a process that could serve nobody, so that whoever started it learns of that and starts it
/// again. There is no exit status but 0: it ends by a signal.
[[noreturn]] void giveUp(const char* reason) {
    printDiagnostic("%s", reason);
    std::abort();
}

} // namespace

int main(int argc, char** argv) {
    prepareProcess();
    if (Usage::answer(argc, argv))
        return 0;
    StandardStream::error().write(
        string_format("Production Test Server (Build %s)\n%s", getDateTimeString(), kLegalNotice));
    const Supplier supplier = chosenSupplier();
    comm()->setInterfaceTyp(kStationChannel, supplier.interface);
    AbstractListener* serial = supplier.create();
    auto* network = new NetListener;
    comm()->setInterface(Comm::On);
    Handler::getInstance()->initHandler();
    if (!Handler::getInstance()->isValid())
        giveUp(kNoDispatcher);
    const bool isSerialStarted = start(*serial, kNoSerial);
    const bool isNetworkStarted = start(*network, kNoNetwork);
    if (!isSerialStarted && !isNetworkStarted)
        giveUp(kNoFrontEnd);
    // Behind those that serve: they get what threads there are.
    StandardStream::output().start();
    StandardStream::error().start();
    serial->waitForDead();
    network->waitForDead();
    delete network;
    delete serial;
    writeLastWords();
    return 0;
}
