// The simulated telephone module and Bluetooth chip: whatever the daemon sends them, what they say has
// their form.

#include <string>
#include <string_view>

#include "Expect.h"
#include "Input.h"
#include "devices/BluetoothChip.h"
#include "devices/ModemCommands.h"

namespace {

using headunit::BluetoothChip;
using headunit::ModemCommands;

/// The unit's user has it otherwise.
void set(ModemCommands& modem, Input& input) {
    const int value = input.byte();
    if (modem.setSignal(value))
        expect(value <= ModemCommands::kStrongest || value == ModemCommands::kUnknownSignal,
               "A signal has its strength");
    if (modem.setRegistration(value))
        expect(value <= ModemCommands::kLastRegistration, "A registration has its state");
    modem.setCard(static_cast<ModemCommands::Card>(value % 4));
    const std::string report = modem.registrationReport();
    expect(report.empty() || report.find("+CREG: ") != std::string::npos,
           "A report says what it is about");
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// Whatever was asked before, a line that sets everything back is answered with nothing but that it was
/// done.
void expectDefaults(ModemCommands& modem) {
    modem.forgetLine();
    std::string answer;
    for (const char character : std::string_view("ATQ0V1Z\r"))
        answer += modem.take(character).answer;
    expectSame("\r\nOK\r\n", answer, "the answer to ATQ0V1Z");
}

void ask(std::string_view characters, ModemCommands& modem) {
    constexpr std::size_t kLongestAnswer = 32768;
    for (const char character : characters) {
        const ModemCommands::Reaction reaction = modem.take(character);
        expect(reaction.echo.empty() || reaction.echo == std::string(1, character),
               "An echo is what was sent");
        expect(reaction.answer.empty() || endsWith(reaction.answer, "\r") ||
                   endsWith(reaction.answer, "\n"),
               "An answer ends a line");
        expect(reaction.answer.size() <= kLongestAnswer, "An answer has an end");
    }
}

void send(std::string_view packet, BluetoothChip& chip) {
    const std::size_t before = chip.unsaid();
    chip.take(packet);
    expect(chip.unsaid() <= before + 1 && chip.unsaid() <= BluetoothChip::kMostUnsaid,
           "A packet is answered once at most");
}

void expectEvents(BluetoothChip& chip) {
    constexpr std::size_t kHead = 3;
    while (chip.hasSomethingToSay()) {
        const std::string event = chip.next();
        expect(event.size() >= kHead && event[0] == BluetoothChip::kEventPacket, "A chip says events");
        expectSame<std::size_t>(event.size() - kHead, static_cast<unsigned char>(event[2]),
                                "an event's length");
    }
}

} // namespace

/// To whom and how much of what follows, again and again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    ModemCommands modem;
    BluetoothChip chip;
    while (!input.isEmpty()) {
        const unsigned what = input.byte();
        if (what == 0)
            set(modem, input);
        else if (what >= 0xE0)
            send(input.bytes(what - 0xE0), chip);
        else
            ask(input.bytes(what), modem);
    }
    expectEvents(chip);
    expectDefaults(modem);
    return 0;
}
