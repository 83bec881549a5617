#include "Exchange.h"

#include <variant>

#include "client/BinaryClient.h"
#include "client/Client.h"
#include "client/Failure.h"
#include "client/Hex.h"
#include "client/SerialLink.h"
#include "client/TcpLink.h"
#include "session/LinkSession.h"
#include "session/ParallelSession.h"

namespace station {

namespace {

constexpr char kBinary[] = "binary";
constexpr char kAscii[] = "ascii";
constexpr char kRawName[] = "raw";

[[noreturn]] void refuse(const std::string& message) {
    throw Failure(Failure::Kind::InvalidRequest, message);
}

/// True for binary, false for ASCII.
bool isBinary(const CommandLine& line, const Target& target) {
    const bool isSerial = std::holds_alternative<SerialTarget>(target);
    if (line.protocol.empty())
        return isSerial;
    if (line.protocol != kBinary && line.protocol != kAscii)
        refuse("invalid protocol '" + line.protocol + "': expected binary or ascii");
    if (line.protocol == kBinary && !isSerial)
        refuse("the binary protocol needs a serial line: TCP carries the ASCII form only");
    return line.protocol == kBinary;
}

void checkNeedsNoBinary(const CommandLine& line) {
    if (line.name == kRawName)
        refuse("raw needs the binary protocol of a serial line");
    if (line.waitStartup)
        refuse("--wait-startup needs the binary protocol of a serial line");
}

auto infoSink(Report& report) {
    return [&report](const std::string& message) { report.info(message); };
}

Answer exchangeBinary(const CommandLine& line, const SerialTarget& target, Report& report) {
    const Seconds timeout = parseTimeout(line.timeout);
    const bool isRaw = line.name == kRawName;
    const BinaryRequest request =
        isRaw ? BinaryRequest::raw(line.arguments) : BinaryRequest::encode(line.name, line.arguments);
    const Deadline deadline = Deadline::after(timeout);
    SerialLink link = SerialLink::open(target);
    BinaryClient::Observer observer{infoSink(report)};
    if (isRaw)
        observer.frame = [&report](const UnitFrame& frame) { report.frame(hexArgument(frame.bytes())); };
    BinaryClient client(link, observer);
    if (line.waitStartup)
        client.waitForStartup(deadline);
    return client.execute(request, deadline);
}

Answer exchangeAscii(const CommandLine& line, const TcpTarget& target, Report& report) {
    const Seconds timeout = parseTimeout(line.timeout);
    const Request request(line.name, line.arguments);
    const Deadline deadline = Deadline::after(timeout);
    TcpLink link = TcpLink::connect(target, deadline);
    return Client(link).execute(request, deadline, infoSink(report));
}

Answer exchangeAscii(const CommandLine& line, const SerialTarget& target, Report& report) {
    const Seconds timeout = parseTimeout(line.timeout);
    const Request request(line.name, line.arguments);
    const Deadline deadline = Deadline::after(timeout);
    SerialLink link = SerialLink::open(target);
    Client client(link, Client::EmptyAnswer::NotSent);
    client.takeArrived(deadline, infoSink(report));
    return client.execute(request, deadline, infoSink(report));
}

std::unique_ptr<Session> openBinary(const CommandLine& line, const SerialTarget& target,
                                    const Interruption& interruption, const Session::InfoSink& onInfo) {
    const Seconds timeout = parseTimeout(line.timeout);
    auto link = std::make_unique<SerialLink>(SerialLink::open(target));
    auto session = std::make_unique<BinarySession>(std::move(link), timeout, interruption);
    if (line.waitStartup)
        session->waitForStartup(onInfo);
    return session;
}

std::unique_ptr<Session> openAscii(const CommandLine& line, const TcpTarget& target,
                                   const Interruption& interruption, const Session::InfoSink&) {
    const Seconds timeout = parseTimeout(line.timeout);
    return std::make_unique<ParallelSession>([timeout, target, &interruption] {
        auto link = std::make_unique<TcpLink>(TcpLink::connect(target, Deadline::after(timeout)));
        return std::make_unique<AsciiSession>(std::move(link), timeout, interruption,
                                              Client::EmptyAnswer::Sent);
    });
}

std::unique_ptr<Session> openAscii(const CommandLine& line, const SerialTarget& target,
                                   const Interruption& interruption, const Session::InfoSink& onInfo) {
    const Seconds timeout = parseTimeout(line.timeout);
    auto link = std::make_unique<SerialLink>(SerialLink::open(target));
    auto session = std::make_unique<AsciiSession>(std::move(link), timeout, interruption,
                                                  Client::EmptyAnswer::NotSent);
    session->takeArrived(onInfo);
    return session;
}

} // namespace

Answer exchange(const CommandLine& line, Report& report) {
    const Target target = parseTarget(line.target);
    if (isBinary(line, target))
        return exchangeBinary(line, std::get<SerialTarget>(target), report);
    checkNeedsNoBinary(line);
    return std::visit([&](const auto& place) { return exchangeAscii(line, place, report); }, target);
}

std::unique_ptr<Session> openSession(const CommandLine& line, const Interruption& interruption,
                                     const Session::InfoSink& onInfo) {
    const Target target = parseTarget(line.target);
    if (isBinary(line, target))
        return openBinary(line, std::get<SerialTarget>(target), interruption, onInfo);
    checkNeedsNoBinary(line);
    return std::visit([&](const auto& place) { return openAscii(line, place, interruption, onInfo); },
                      target);
}

} // namespace station
