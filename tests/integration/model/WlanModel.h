#pragma once

#include <optional>
#include <string>

#include "model/Answer.h"

/// The WLAN side of the wireless chip behind the command serial.
class WlanModel {
public:
    WlanModel();

    Answer open();
    Answer close();
    Answer send(const std::string& data);
    /// A success with so many bytes.
    Answer get(std::size_t count);

private:
    /// Nothing when the chip has carried it out.
    std::optional<Answer> carryOut();

    bool m_isOpen = false;
    std::string m_collected;
    std::string m_reply;
    std::string m_address;
};
