#pragma once

#include "devices/FolderWatch.h"
#include "devices/GpioPorts.h"

namespace headunit {

/// The power switch of the telephone module: some time after the port "nad_on_off" was written the port
/// "nad_status" follows it. Started before the event loop runs, served on the loop's thread. The loop
/// and the ports outlive it.
class TelephonePower {
public:
    static constexpr std::string_view kSwitch = "nad_on_off";
    static constexpr std::string_view kStatus = "nad_status";
    static constexpr std::chrono::milliseconds kDelay{100};

    TelephonePower(EventLoop& loop, GpioPorts& ports);

    /// Begins to react to the installed ports. Called once. Throws UnitError.
    void start(const UnitTree& tree);

private:
    void portChanged(const std::string& name);
    void follow();

    GpioPorts& m_ports;
    char m_wanted = '0'; ///< the switch's last position
    FolderWatch m_watch;
    Timer m_follow;
};

} // namespace headunit
