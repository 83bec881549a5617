#include "commands/ackCmd.h"

#include "runtime/OnlyObject.h"

namespace {

constexpr char kAcknowledge = 0x06;

} // namespace

System::Mutex ackCmd::s_singleton_mutex(System::Mutex::Normal);

ackCmd* ackCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new ackCmd; });
}

ackCmd::ackCmd() : AbstractCmd(kAcknowledge, "ack", true) {}

ProcessResponse* ackCmd::process(std::vector<std::vector<char>>&) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kNoAnswer).release();
}

ProcessResponse* ackCmd::process(std::vector<unsigned char>*) {
    return std::make_unique<ProcessResponse>(ProcessResponse::kNoAnswer).release();
}
