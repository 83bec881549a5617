#include "commands/ackCmd.h"

namespace {

constexpr char kAcknowledge = 0x06;

} // namespace

System::Mutex ackCmd::s_singleton_mutex(System::Mutex::Normal);

ackCmd* ackCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static ackCmd* const instance = new ackCmd;
    return instance;
}

ackCmd::ackCmd() : AbstractCmd(kAcknowledge, "ack", true) {}

ProcessResponse* ackCmd::process(std::vector<std::vector<char>>&) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kNoAnswer).release();
}

ProcessResponse* ackCmd::process(std::vector<unsigned char>*) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kNoAnswer).release();
}
