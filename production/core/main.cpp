#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/BuildStamp.h"
#include "core/Handler.h"
#include "core/Usage.h"
#include "devices/CommHandler.h"
#include "frontends/FlexListener.h"
#include "frontends/Listener.h"
#include "frontends/NetListener.h"
#include "platform/Descriptors.h"

namespace {

constexpr char kLegalNotice[] = "For authorised use in production and service only.";

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
    System::openStandardStreams();
    // A peer that has gone, or a shell that does not read its commands, is an error to handle, not an
    // end.
    std::signal(SIGPIPE, SIG_IGN);
    // A parent that ignored it would keep us from learning how a shell ended.
    std::signal(SIGCHLD, SIG_DFL);
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
}

} // namespace

int main(int argc, char** argv) {
    prepareProcess();
    if (Usage::answer(argc, argv))
        return 0;
    std::fprintf(stderr, "%s%s%s%s%s", "Production Test Server (Build ", getDateTimeString(), ")", "\n",
                 kLegalNotice);
    const Supplier supplier = chosenSupplier();
    comm()->setInterfaceTyp(kStationChannel, supplier.interface);
    AbstractListener* serial = supplier.create();
    auto* network = new NetListener;
    comm()->setInterface(Comm::On);
    Handler::getInstance()->initHandler();
    serial->start();
    network->start();
    serial->waitForDead();
    network->waitForDead();
    delete network;
    delete serial;
    return 0;
}
