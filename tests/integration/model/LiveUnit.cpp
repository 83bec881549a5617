#include "model/LiveUnit.h"

#include <fcntl.h>
#include <termios.h>

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "line/BinaryLink.h"
#include "model/BlockModel.h"
#include "model/ExecModel.h"
#include "model/Notation.h"
#include "model/PortModel.h"
#include "model/UnitState.h"
#include "support/Lines.h"
#include "support/Waiting.h"

namespace {

// A look whether more comes than was asked for.
constexpr std::chrono::milliseconds kSilence{200};

constexpr char kInfo[] = "\x02#Info \"";

DaemonStart startFor(bool frames) {
    DaemonStart start;
    start.stationLine = true;
    if (!frames)
        start.supplier = "SOLMED";
    return start;
}

/// Nothing is left of what was said on the line before.
void forget(const char* line) {
    const System::Descriptor terminal(::open(line, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!terminal || ::tcflush(terminal.get(), TCIOFLUSH) != 0)
        throw std::runtime_error(std::string(line) + " cannot be flushed");
}

std::string frameAt(const std::string& frames, std::size_t at) {
    return frames.substr(at, static_cast<unsigned char>(frames[at]));
}

} // namespace

LiveUnit::LiveUnit(bool lineCarriesFrames)
    : m_lineCarriesFrames(lineCarriesFrames), m_patience(kPatience) {
    for (const MediumPlace& place : kMedia)
        newFirstBlock(place);
    // Nobody speaks on the unit's other lines.
    controlUnit("receiver off");
    // Comes back once the driver is ready, of which there is one.
    static const int status = std::system("deva-nvaudio");
    if (status != 0)
        throw std::runtime_error("deva-nvaudio does not start");
}

Links LiveUnit::links() const {
    Links links(kConnections + 1, false);
    links[kStationLink] = m_lineCarriesFrames;
    return links;
}

std::string LiveUnit::target(int link) const {
    if (link != kStationLink)
        return "tcp:127.0.0.1:15051";
    return m_lineCarriesFrames ? "serial:LINE" : "serial:LINE --protocol ascii";
}

Model LiveUnit::model() const {
    return {m_daemon->buildStamp(), kStationLink};
}

void LiveUnit::restart() {
    m_connections.clear();
    m_daemon.reset();
    m_adapter.pull();
    resetFiles();
    resetDisplays();
    m_adapter.plug();
    startDaemon();
    resetChips();
}

void LiveUnit::startDaemon() {
    m_daemon = std::make_unique<Daemon>(startFor(m_lineCarriesFrames));
    m_connections.resize(kConnections);
    const std::string stamp = m_daemon->buildStamp();
    if (!m_lineCarriesFrames) {
        expectExchange(m_adapter, "", answer("Info Production Test Server (Build " + stamp + ")"));
        return;
    }
    if (m_adapter.receiveFrame() != statusFrame(stamp, false))
        throw std::runtime_error("the daemon does not announce itself");
    m_adapter.send(kAcknowledgement);
    m_adapter.waitUntilTaken();
}

void LiveUnit::resetFiles() const {
    for (const MediumPlace& place : kMedia) {
        constexpr off_t kSize = off_t{kBlocks} * kBlockSize;
        if (::truncate(place.path, 0) != 0 || ::truncate(place.path, kSize) != 0)
            throw std::runtime_error(std::string(place.path) + " cannot be emptied");
        std::fstream(place.path, std::ios::binary | std::ios::in | std::ios::out)
            << newFirstBlock(place);
    }
    for (std::size_t port = 0; port < kPorts; ++port)
        if (kPortPlaces[port].isOutput && port != kTelephoneSwitch)
            writeFile(portNode(port), kPortPlaces[port].isHighAtFirst ? "1" : "0");
    for (int note = 0; note < ExecModel::kNotes; ++note)
        writeFile(ExecModel::note(note), "");
    for (const char* line : {"/dev/ser1", "/dev/NAD/AT_port", "/dev/ser3"})
        forget(line);
}

void LiveUnit::resetDisplays() const {
    // The tools say that there is nothing to end, the first time.
    constexpr char kReset[] =
        "cd /vrk/bin/apps; { ./showimage q; ./dmdt dc 100 -9999; ./dmdt sc 0 100; "
        "./dmdt sc 4 100; } 2>/dev/null; true";
    if (std::system(kReset) != 0)
        throw std::runtime_error("the displays cannot be cleared");
}

/// Of a fresh daemon: it has no other settings for the bus than its first ones.
void LiveUnit::resetChips() const {
    constexpr std::size_t kMemory = 256;
    const std::string requests[] = {
        "i2c write 0 0x50 " + hexText(std::string(1, '\0') + std::string(kMemory, '\xFF')),
        "i2c write 0 0x48 hex(0100)",
        "i2c write 0 0x48 hex(024B00)",
        "i2c write 0 0x48 hex(035000)",
        "i2c write 0 0x48 hex(00)",
        "i2c write 0 0x20 hex(FF)",
        "serial open 240",
        "serial send 240 hex(A900080000000000)",
    };
    const Connection& connection = m_connections.front();
    for (const std::string& text : requests)
        expectExchange(connection, request(text), answer(text.substr(0, text.find(' ')) + " ok"));
    expectExchange(connection, request("serial get 240 8"),
                   answer("serial get 0xF0 " + base64Text(std::string("\xA9\x80\x8\0\0\0\0\0", 8))));
    expectExchange(connection, request("serial close 240"), answer("serial ok"));
}

std::string LiveUnit::exchange(const Request& request, const Model::Prediction& expected) {
    if (request.link != kStationLink)
        return exchangeLine(m_connections[static_cast<std::size_t>(request.link) - 1], request,
                            expected);
    return request.isFrame() ? exchangeFrame(request, expected)
                             : exchangeLine(m_adapter, request, expected);
}

std::string LiveUnit::exchangeLine(const ByteStream& link, const Request& request,
                                   const Model::Prediction& expected) const {
    link.send(request.sent());
    std::string received;
    // What wants no answer on the serial line gets none; whatever comes shows with the next request.
    if (expected.bytes.empty())
        return received;
    std::string line;
    do {
        if (!link.hasInputWithin(m_patience))
            return received;
        line = link.receiveLine();
        received += line;
    } while (line.compare(0, sizeof kInfo - 1, kInfo) == 0);
    return isAsExpected(request, received, expected.bytes) ? received : received + leftover(link);
}

std::string LiveUnit::exchangeFrame(const Request& request, const Model::Prediction& expected) {
    // Acknowledged with the request: the unit reads that only once it has answered.
    m_adapter.send(request.sent().append(expected.isAnswered ? kAcknowledgement : ""));
    std::string received;
    for (std::size_t at = 0; at < expected.bytes.size(); at += frameAt(expected.bytes, at).size()) {
        if (!m_adapter.hasInputWithin(m_patience))
            return received;
        received += m_adapter.receiveFrame();
    }
    return isAsExpected(request, received, expected.bytes) ? received : received + leftover(m_adapter);
}

std::string LiveUnit::leftover(const ByteStream& link) const {
    std::string bytes;
    while (link.hasInputWithin(kSilence)) {
        const std::string more = link.receiveSome(4096);
        if (more.empty())
            break;
        bytes += more;
    }
    return bytes;
}

bool LiveUnit::shows(const Effect& effect) {
    return eventually(effect.holds, m_patience);
}

bool LiveUnit::isSilent() {
    for (const Connection& connection : m_connections)
        expectNothingMore(connection);
    return m_adapter.isSilentFor(kSilence);
}
