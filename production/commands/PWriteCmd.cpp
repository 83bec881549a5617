#include "commands/PWriteCmd.h"

#include "commands/RequestSize.h"
#include "runtime/OnlyObject.h"

namespace {

constexpr int kPortCommand = 0xE3;
constexpr int kHeaderLength = 3;
constexpr unsigned char kWritePort = 1;
constexpr unsigned char kHighBit = 0x04;

constexpr RequestSize kWriteRequest = {6, 6, "Invalid Command Length: Expected a Length of 6, get %d"};

constexpr char kElsewhere[] = "Implemented in port command";
constexpr char kNotSupported[] = "Command not supported";

} // namespace

System::Mutex PWriteCmd::s_singleton_mutex(System::Mutex::Normal);

PWriteCmd* PWriteCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new PWriteCmd; });
}

PWriteCmd::PWriteCmd() : AbstractPCmd('P', "") {}

ProcessResponse* PWriteCmd::process(std::vector<std::vector<char>>&) {
    return genericError(kElsewhere).release();
}

Answer PWriteCmd::run(const std::vector<unsigned char>* request) {
    if (tavrin_getCommand(request) != kPortCommand || tavrin_getRequestLen(request) <= kHeaderLength ||
        (*request)[3] != kWritePort)
        return genericError(kNotSupported);
    return writePort(request);
}

Answer PWriteCmd::writePort(const std::vector<unsigned char>* request) {
    if (Answer refusal = checkLength(kWriteRequest, tavrin_getRequestLen(request)))
        return refusal;
    const unsigned char port = (*request)[4];
    if (Answer refusal = checkOutput(port))
        return refusal;
    return successIn<ProcessResponseTavrin>(
        writeLevel(port, ((*request)[5] & kHighBit) != 0 ? '1' : '0'));
}
