#include "commands/IWriteCmd.h"

#include <memory>

#include "commands/I2CAccess.h"
#include "wire/BigEndian.h"

namespace {

using I2CAccess::OpenFailure;

constexpr int kAttributes = 255;
constexpr int kShortest = 5;
constexpr int kSpeedLength = 7;
constexpr int kStopLength = 6;
constexpr int kHeader = 3;
// Named in the refusal; one more is accepted, since the first of the bytes is the slave's address.
constexpr int kMostBytes = 250;

constexpr char kElsewhere[] = "IWrite is implemented in i2c";
constexpr char kTooShort[] = "Expect at least 5 Bytes, received: %d";
constexpr char kWrongSpeedLength[] = "Expect 7 Bytes, received: %d";
constexpr char kWrongStopLength[] = "Expect at 6 Bytes, received: %d";
constexpr char kCountOutOfRange[] = "Number of to by written Bytes must be in Range [1,%d] but is %d";
constexpr char kTooFewBytes[] = "Bytes to Write is out of Range of received Bytes";

ProcessResponse* genericError(const char* format, int number) {
    return new ProcessResponse(ProcessResponse::kGenericError, format, number);
}

ProcessResponse* done() {
    return new ProcessResponseTavrin(ProcessResponse::kSuccess, "");
}

} // namespace

System::Mutex IWriteCmd::s_singleton_mutex(System::Mutex::Normal);

IWriteCmd* IWriteCmd::getInstance() {
    const System::Lock lock(s_singleton_mutex);
    static IWriteCmd* const instance = new IWriteCmd;
    return instance;
}

IWriteCmd::IWriteCmd() : AbstractCmd('I', "", true) {}

ProcessResponse* IWriteCmd::process(std::vector<std::vector<char>>&) {
    return new ProcessResponse(ProcessResponse::kGenericError, kElsewhere);
}

ProcessResponse* IWriteCmd::process(std::vector<unsigned char>* request) {
    return tavrin_getCommand(request) == kAttributes ? setAttribute(request) : writeBus(request);
}

ProcessResponse* IWriteCmd::setAttribute(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortest)
        return genericError(kTooShort, length);
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus((*request)[3], OpenFailure::MessageAndCode, refusal);
    if (i2c == nullptr)
        return refusal.release();
    const unsigned char attribute = (*request)[4];
    switch (attribute) {
        case I2CAccess::BusSpeed:
            if (length != kSpeedLength)
                return genericError(kWrongSpeedLength, length);
            refusal.reset(
                I2CAccess::setBusSpeed(*i2c, bigEndian16(*request, 5), I2CAccess::kSpeedError));
            break;
        case I2CAccess::StopCondition:
            if (length != kStopLength)
                return genericError(kWrongStopLength, length);
            refusal.reset(I2CAccess::setStopCondition(*i2c, (*request)[5]));
            break;
        default:
            return I2CAccess::unknownAttribute(attribute);
    }
    return refusal ? refusal.release() : done();
}

ProcessResponse* IWriteCmd::writeBus(std::vector<unsigned char>* request) {
    const int length = tavrin_getRequestLen(request);
    if (length < kShortest)
        return genericError(kTooShort, length);
    const unsigned char count = (*request)[3];
    if (static_cast<unsigned char>(count - 1) > kMostBytes)
        return new ProcessResponse(ProcessResponse::kGenericError, kCountOutOfRange, kMostBytes, count);
    if (count + kHeader >= length)
        return new ProcessResponse(ProcessResponse::kGenericError, kTooFewBytes);
    std::unique_ptr<ProcessResponse> refusal;
    I2c* i2c = I2CAccess::openBus((*request)[2], OpenFailure::MessageAndCode, refusal);
    if (i2c == nullptr)
        return refusal.release();
    // The slave's address is sent as the first of the bytes, too.
    const unsigned char* bytes = request->data() + 4;
    const DeviceResult result = i2c->write(bytes[0], bytes, count);
    return result.failed() ? I2CAccess::outcome(result) : done();
}
