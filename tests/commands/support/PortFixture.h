#pragma once

#include <string>

#include "support/UnitFixture.h"

struct Port {
    const char* name;
    unsigned char number;
    unsigned char type;
};

constexpr unsigned int kOutOfRange = 0x27000010;
constexpr unsigned int kNotAnOutput = 0x27000040;
constexpr unsigned int kAccessFailed = 0x27000000;
constexpr unsigned int kWriteFailed = 0x27010000;
constexpr unsigned int kNotAvailable = 0x40000001;

constexpr unsigned char kInput = 1;
constexpr unsigned char kOutput = 3;

constexpr Port kPorts[] = {
    {"ioc_kru_irq", 0, kOutput}, {"ipod_accessory", 1, kInput}, {"ipod_detect", 2, kInput},
    {"usb_pwr_1", 3, kOutput},   {"usb_pwr_0", 4, kOutput},     {"nad_on_off", 5, kOutput},
    {"nad_reset", 6, kOutput},   {"nad_status", 7, kInput},     {"usb_oc_detect", 8, kInput},
    {"vd1_int", 9, kInput},      {"wlan_reset", 10, kOutput},   {"sd_cd1", 11, kInput},
    {"sd_wp1", 12, kInput},      {"sd_ena1", 13, kOutput},      {"sd_cd2", 14, kInput},
    {"sd_wp2", 15, kInput},      {"sd_ena2", 16, kOutput},      {"cvbs_reset", 17, kOutput},
    {"gpio_po4", 18, kOutput},   {"gpio_po3", 19, kInput},      {"bt_wlan_pd", 20, kOutput},
};

/// What a port's node may be a link to, and what becomes of using it.
struct OddNode {
    const char* target; ///< null: there is no node
    int error;
    const char* reason;
};

constexpr char kNothing[] = "/tmp/nothing";
constexpr char kSomeFolder[] = "/tmp/folder";
constexpr char kLinkToItself[] = "/tmp/loop";
constexpr char kSocket[] = "/tmp/socket";
constexpr char kBehindAFile[] = "/dev/null/node";

/// A unit whose ports all have nodes, at '0', and with the targets above.
class PortFixture : public UnitFixture {
protected:
    static constexpr char kFolder[] = "/dev/nvgpio";

    PortFixture();

    static std::string node(const Port& port) { return std::string(kFolder) + "/" + port.name; }
    static void setLevel(const Port& port, const std::string& content) { write(node(port), content); }
    static std::string levelOf(const Port& port) { return read(node(port)); }
    static void setAll(const std::string& content);

    /// The nodes' contents in the order of their numbers.
    static std::string allLevels();

    /// Makes the port's node a link, or removes it.
    static void relink(const Port& port, const char* target);

    static std::size_t openDescriptors();
};
