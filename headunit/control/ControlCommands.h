#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "devices/UnitDevices.h"

namespace headunit {

/// What a user may ask of a running unit: one line of words in, one answer out. For the event loop's
/// thread; nothing here blocks. The devices outlive it.
class ControlCommands {
public:
    struct Answer {
        bool done = true;
        std::string text; ///< without its last line end; why not, when it was not done
    };

    explicit ControlCommands(UnitDevices& devices) : m_devices(devices), m_lines(devices.lines) {}

    /// Runs one line of words that blanks separate.
    Answer run(std::string_view line);

private:
    using Words = std::vector<std::string>;
    struct Command;
    struct ModemKey;

    /// The word that follows a device's name, and what belongs to it.
    struct Key {
        std::string_view key;
        Answer (ControlCommands::*handler)(const Words& values);
        std::size_t leastValues;
        std::size_t mostValues;
        const char* usage;
    };

    static std::string allWords();

    /// Looks the first word up and hands the others to its handler.
    Answer runKey(const std::vector<Key>& keys, const Words& words);

    // What managers of all kinds are told.
    static Answer setManager(ManagerNode& node, const std::string& onOff);
    static Answer setManagerLate(ManagerNode& node, const std::string& milliseconds);

    // StateReport.cpp
    Answer state(const Words& words);
    std::string describeManagers();
    std::string describeDisplays() const;

    // SerialControl.cpp
    Answer unplug(const Words& words);
    Answer plug(const Words& words);
    Answer position(const Words& words);
    Answer modem(const Words& words);
    Answer loopback(const Words& words);
    Answer receiver(const Words& words);
    Answer setSignal(const std::string& value);
    Answer setRegistration(const std::string& value);
    Answer setCard(const std::string& value);
    Answer setLate(const std::string& value);
    Answer setSilent(const std::string& value);

    // I2cControl.cpp
    Answer i2c(const Words& words);
    Answer setI2cManager(const Words& words);
    Answer setI2cLate(const Words& words);
    Answer orderI2cResult(const Words& words);
    Answer setChip(const Words& words);
    Answer setTemperature(const Words& words);
    Answer setPins(const Words& words);
    Answer eeprom(const Words& words);

    // WirelessControl.cpp
    Answer wlan(const Words& words);
    Answer setWlanManager(const Words& values);
    Answer setWlanLate(const Words& values);
    Answer orderWlanResult(const Words& values);
    Answer orderWlanRefusal(const Words& values);
    Answer orderWlanSize(const Words& values);
    Answer bluetooth(const Words& words);
    Answer setBluetoothManager(const Words& values);
    Answer setBluetoothLate(const Words& values);
    Answer setBluetoothSilent(const Words& values);
    Answer orderBluetoothFailures(const Words& values);
    Answer sendFromBluetooth(const Words& values);

    // DisplayControl.cpp
    Answer display(const Words& words);
    Answer orderToolFailures(const Words& values);
    Answer setToolsLate(const Words& values);

    // BoardControl.cpp
    Answer insert(const Words& words);
    Answer remove(const Words& words);
    Answer ports(const Words& words);
    Answer port(const Words& words);
    Answer audio(const Words& words);

    static const Command kCommands[];
    static const ModemKey kModemKeys[];

    UnitDevices& m_devices;
    SerialLines& m_lines; ///< of the devices
};

} // namespace headunit
