#include "devices/BluetoothManager.h"

#include <cerrno>

namespace headunit {
namespace {

ManagerAnswer failed(int error) {
    return {error, {}};
}

} // namespace

void BluetoothManager::orderFailures(Call call, unsigned count) {
    m_failures[call].order(true, count);
    if (call == Call::read && m_reader != nullptr && isToFail(call))
        failReader();
}

void BluetoothManager::flush() {
    if (m_reader == nullptr || !m_chip.hasSomethingToSay())
        return;
    m_node.answer(m_reader, encodeAnswer({0, m_chip.next()}, m_room));
    m_reader = nullptr;
}

std::optional<std::string> BluetoothManager::requested(Client client, std::string_view packet) {
    const auto request = decodeRequest(packet);
    if (!request)
        return encodeAnswer(failed(EINVAL), 0);
    const auto answer = carryOut(client, *request);
    if (!answer)
        return std::nullopt;
    return encodeAnswer(*answer, request->room);
}

void BluetoothManager::left(Client client) {
    if (m_reader == client)
        m_reader = nullptr;
    if (m_opener == client)
        m_opener = nullptr;
}

bool BluetoothManager::isToFail(Call call) {
    bool fails = false;
    return m_failures[call].take(fails);
}

void BluetoothManager::failReader() {
    m_node.answer(m_reader, encodeAnswer(failed(EIO), 0));
    m_reader = nullptr;
}

/// Nothing when the answer has to wait.
std::optional<ManagerAnswer> BluetoothManager::carryOut(Client client, const ManagerRequest& request) {
    switch (request.command) {
        case BluetoothRequests::kOpen:
            if (isToFail(Call::open))
                return failed(EIO);
            if (m_reader != nullptr) // of somebody who had the chip open before
                failReader();
            m_chip.clear();
            m_opener = client;
            return ManagerAnswer();
        case BluetoothRequests::kWrite:
            if (request.sent.empty() || request.sent.size() > BluetoothRequests::kLongestPacket)
                return failed(EINVAL);
            if (!isOpen())
                return failed(ENOTCONN);
            if (isToFail(Call::write))
                return failed(EIO);
            m_chip.take(request.sent);
            flush();
            return ManagerAnswer();
        case BluetoothRequests::kRead:
            return wait(client, request.room);
        default:
            return failed(ENOTTY);
    }
}

std::optional<ManagerAnswer> BluetoothManager::wait(Client client, std::uint32_t room) {
    if (!isOpen())
        return failed(ENOTCONN);
    if (m_reader != nullptr)
        return failed(EBUSY);
    if (isToFail(Call::read))
        return failed(EIO);
    if (m_chip.hasSomethingToSay())
        return ManagerAnswer{0, m_chip.next()};
    m_reader = client;
    m_room = room;
    return std::nullopt;
}

} // namespace headunit
