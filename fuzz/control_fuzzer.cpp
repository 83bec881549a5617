// What a user says to a simulated unit: whatever the words are, they are carried out or refused with a
// reason, and the unit can still tell how it is.

#include <algorithm>
#include <string>
#include <string_view>

#include "Expect.h"
#include "control/ControlCommands.h"
#include "devices/UnitDevices.h"
#include "serial/EventLoop.h"
#include "unit/UnitFolder.h"

namespace {

/// A unit whose loop does not run: what is said to it is done at once, or never.
struct Unit {
    Unit() { devices.install(folder, {"sda0", "sdb0"}); }

    headunit::UnitFolder folder = headunit::UnitFolder::temporary();
    headunit::EventLoop loop;
    headunit::UnitDevices devices{loop};
    headunit::ControlCommands commands{devices};
};

/// What has to be said so that a unit is as a new one, as far as the words go. Some of it is refused,
/// where it is so already.
constexpr std::string_view kAsNew[] = {
    "plug station",
    "plug loopback",
    "plug modem",
    "plug receiver",
    "position 0 0",
    "modem signal 20",
    "modem registration 1",
    "modem pin ready",
    "modem late 0",
    "modem silent off",
    "loopback on",
    "receiver on",
    "i2c manager on",
    "i2c late 0",
    "i2c result 0 0",
    "i2c chip eeprom on",
    "i2c chip sensor on",
    "i2c chip expander on",
    "i2c temperature 25",
    "i2c pins FF",
    "wlan manager on",
    "wlan late 0",
    "wlan result 0 0",
    "wlan refuse 0 0",
    "wlan size 0 0",
    "bluetooth manager on",
    "bluetooth late 0",
    "bluetooth silent off",
    "bluetooth fail open 0",
    "bluetooth fail write 0",
    "bluetooth fail read 0",
    "display fail showimage 0",
    "display fail dmdt 0",
    "display late 0",
    "insert sda0",
    "insert sdb0",
    "insert cd0",
    "insert umass0",
    "insert mnand0",
    "insert fs0",
};

Unit& freshUnit() {
    static Unit unit;
    for (const std::string_view line : kAsNew)
        unit.commands.run(line);
    for (const headunit::GpioPorts::Port& port : headunit::GpioPorts::kPorts)
        for (const char* const order : {" back", " 0"})
            unit.commands.run("port " + std::string(port.name) + order);
    return unit;
}

void expectAnswer(const headunit::ControlAnswer& answer) {
    if (answer.done)
        return;
    expect(!answer.text.empty(), "A refusal has a reason");
    expect(answer.text.find('\n') == std::string::npos, "A refusal is one line");
}

} // namespace

/// Lines of words.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    headunit::ControlCommands& commands = freshUnit().commands;
    std::string_view lines(reinterpret_cast<const char*>(data), size);
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        expectAnswer(commands.run(lines.substr(0, end)));
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    const headunit::ControlAnswer state = commands.run("state");
    expect(state.done && !state.text.empty(), "A unit tells how it is");
    return 0;
}
