#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "manager/ScriptedManager.h"
#include "support/PassThroughUnit.h"

constexpr char kWlanManager[] = "/dev/io-net/uap0";
constexpr char kWlanDriver[] = "/dev/shmem/mv8787wl";

/// A host command, or the chip's reply to one: the header, then the data.
Bytes hostMessage(std::uint16_t code, std::uint16_t sequence, std::uint16_t result,
                  const Bytes& data = {});
/// The same with a size of its own making.
Bytes hostMessage(std::uint16_t code, std::uint16_t size, std::uint16_t sequence, std::uint16_t result,
                  const Bytes& data);

/// The packet in which the manager gets a host command.
Bytes wlanRequest(const Bytes& command);
/// What the manager answers for the parts of the message, with the reply at its place.
Bytes wlanReply(const Bytes& reply);

/// A unit with a scripted manager for the wireless chip, whose driver is there. A case finds the link
/// closed, and nothing collected or stored.
class WlanUnit : public PassThroughUnit {
protected:
    WlanUnit();

    void open();
    /// The manager is not there any more.
    void removeManager();

    std::unique_ptr<ScriptedManager> m_manager;
};
