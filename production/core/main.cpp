#include <csignal>
#include <cstdio>

#include "core/BuildStamp.h"
#include "core/Handler.h"
#include "frontends/NetListener.h"
#include "platform/Descriptors.h"

namespace {

constexpr char kLegalNotice[] = "For authorised use in production and service only.";

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

int main() {
    prepareProcess();
    std::fprintf(stderr, "%s%s%s%s%s", "Production Test Server (Build ", getDateTimeString(), ")", "\n",
                 kLegalNotice);
    auto* network = new NetListener;
    Handler::getInstance()->initHandler();
    network->start();
    network->waitForDead();
    delete network;
    return 0;
}
