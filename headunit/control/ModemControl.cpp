#include "control/ModemControl.h"

#include "control/ControlWords.h"

namespace headunit {
namespace {

using Card = ModemCommands::Card;

constexpr char kNoSignal[] = "'%s' is not a signal strength: 0 to 31, or 99 for unknown";
constexpr char kNoRegistration[] = "'%s' is not a registration state: 0 to 5";
constexpr Choice<Card> kCards[] = {{"ready", Card::ready},
                                   {"wanted", Card::wantsPin},
                                   {"blocked", Card::blocked},
                                   {"absent", Card::absent}};

std::string setSignal(UnitDevices& devices, const ControlArguments& arguments) {
    const auto strength = wholeNumber(arguments[0]);
    if (!strength || !devices.lines.modem.commands().setSignal(*strength))
        throw unitError(kNoSignal, arguments[0].c_str());
    return {};
}

std::string setRegistration(UnitDevices& devices, const ControlArguments& arguments) {
    Modem& modem = devices.lines.modem;
    const auto state = wholeNumber(arguments[0]);
    if (!state || !modem.commands().setRegistration(*state))
        throw unitError(kNoRegistration, arguments[0].c_str());
    modem.say(modem.commands().registrationReport());
    return {};
}

std::string setCard(UnitDevices& devices, const ControlArguments& arguments) {
    devices.lines.modem.commands().setCard(chosen(kCards, arguments[0]));
    return {};
}

std::string setLate(UnitDevices& devices, const ControlArguments& arguments) {
    devices.lines.modem.setLate(lateness(arguments[0]));
    return {};
}

std::string setSilent(UnitDevices& devices, const ControlArguments& arguments) {
    devices.lines.modem.setSilent(onOrOff(arguments[0]));
    return {};
}

} // namespace

ControlRow modemControl() {
    const ControlRows keys = {
        {"signal", 1, 1, "N", setSignal},
        {"registration", 1, 1, "N", setRegistration},
        {"pin", 1, 1, "ready|wanted|blocked|absent", setCard},
        {"late", 1, 1, "MILLISECONDS", setLate},
        {"silent", 1, 1, "on|off", setSilent},
    };
    return {"modem", 2, 2, "VALUE", nullptr, keys};
}

} // namespace headunit
