#include "commands/IWriteCmd.h"

#include <utility>

#include "commands/I2CAccess.h"
#include "commands/RequestSize.h"
#include "runtime/OnlyObject.h"
#include "wire/BigEndian.h"

namespace {

using I2CAccess::OpenFailure;

constexpr int kAttributes = 255;
constexpr int kHeader = 3;
// Named in the refusal; one more is accepted, since the first of the bytes is the slave's address.
constexpr int kMostBytes = 250;

constexpr RequestSize kAnyRequest = {5, kNoLimit, "Expect at least 5 Bytes, received: %d"};
constexpr RequestSize kSpeedRequest = {7, 7, "Expect 7 Bytes, received: %d"};
constexpr RequestSize kStopRequest = {6, 6, "Expect at 6 Bytes, received: %d"};

constexpr char kElsewhere[] = "IWrite is implemented in i2c";
constexpr char kCountOutOfRange[] = "Number of to by written Bytes must be in Range [1,%d] but is %d";
constexpr char kTooFewBytes[] = "Bytes to Write is out of Range of received Bytes";

} // namespace

System::Mutex IWriteCmd::s_singleton_mutex(System::Mutex::Normal);

IWriteCmd* IWriteCmd::getInstance() {
    return System::onlyObject(s_singleton_mutex, [] { return new IWriteCmd; });
}

IWriteCmd::IWriteCmd() : AbstractCmd('I', "", true) {}

ProcessResponse* IWriteCmd::process(std::vector<std::vector<char>>&) {
    return genericError(kElsewhere).release();
}

Answer IWriteCmd::run(const std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (Answer refusal = checkLength(kAnyRequest, length))
        return refusal;
    return successIn<ProcessResponseTavrin>(tavrin_getCommand(request) == kAttributes
                                                ? setAttribute(*request, length)
                                                : writeBus(*request, length));
}

Answer IWriteCmd::setAttribute(const std::vector<unsigned char>& request, int length) {
    auto [i2c, refusal] = I2CAccess::openBus(request[3], OpenFailure::MessageAndCode);
    if (refusal)
        return std::move(refusal);
    const unsigned char attribute = request[4];
    switch (attribute) {
        case I2CAccess::BusSpeed:
            if (Answer wrong = checkLength(kSpeedRequest, length))
                return wrong;
            return I2CAccess::setBusSpeed(*i2c, bigEndian16(request, 5), I2CAccess::kSpeedError);
        case I2CAccess::StopCondition:
            if (Answer wrong = checkLength(kStopRequest, length))
                return wrong;
            return I2CAccess::setStopCondition(*i2c, request[5]);
        default:
            return I2CAccess::unknownAttribute(attribute);
    }
}

Answer IWriteCmd::writeBus(const std::vector<unsigned char>& request, int length) {
    const unsigned char count = request[3];
    if (static_cast<unsigned char>(count - 1) > kMostBytes)
        return genericError(kCountOutOfRange, kMostBytes, count);
    if (count + kHeader >= length)
        return genericError(kTooFewBytes);
    auto [i2c, refusal] = I2CAccess::openBus(request[2], OpenFailure::MessageAndCode);
    if (refusal)
        return std::move(refusal);
    // The slave's address is sent as the first of the bytes, too.
    const unsigned char* bytes = request.data() + 4;
    return I2CAccess::outcome(i2c->write(bytes[0], bytes, count));
}
