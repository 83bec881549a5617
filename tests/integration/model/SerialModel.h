#pragma once

#include <array>
#include <optional>

#include "model/CommandModel.h"
#include "model/WlanModel.h"

/// The command serial. Channel 0 leads to a plug that connects its wires; on the channels 1 and 2 nobody
/// speaks; 3 is the station's own line, with which nothing is done here.
class SerialModel : public CommandModel {
public:
    static constexpr std::uint32_t kOwnLine = 3;
    static constexpr std::uint32_t kWlan = 240;
    static constexpr std::uint32_t kBluetooth = 241;

    /// `stationLink` is the link of the station's line; all others are the network's.
    explicit SerialModel(int stationLink) : m_stationLink(stationLink) {}

    Answer answer(const Request& request) override;
    bool knows(const Request& request) const override;

private:
    struct Channel {
        bool isOpen = false;
        std::string waiting; ///< what has come and was not fetched
    };
    struct Settings {
        std::uint32_t baud;
        std::uint32_t flags;
    };
    /// The sub-commands by their binary codes.
    enum Operation { Open, Close, Send, Get, GetAll, None };

    Answer answerLine(const Request& request);
    Answer answerFrame(const Request& request);
    static Operation operationOf(const Words& words);
    static std::optional<Answer> malformedLine(const Words& words, Operation operation);
    static std::optional<Answer> malformedFrame(const std::string& frame);

    Answer open(std::uint32_t channel, const Settings& settings, int link);
    Answer close(std::uint32_t channel);
    Answer send(std::uint32_t channel, const std::string& data);
    Answer get(std::uint32_t channel, std::size_t count);
    Answer getAll(std::uint32_t channel);
    /// Nothing when the channel is there and open.
    std::optional<Answer> unusable(std::uint32_t channel) const;

    int m_stationLink;
    std::array<Channel, kOwnLine + 1> m_channels;
    WlanModel m_wlan;
    bool m_bluetoothIsOpen = false;
};
