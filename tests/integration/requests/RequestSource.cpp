#include "requests/RequestSource.h"

#include "requests/MalformedRequests.h"

namespace {

// Apart from each other, so that a transfer that strays into the next one is found.
constexpr std::uint32_t kWindowDistance = 0x100000;

std::uint32_t windowOf(int station) {
    return static_cast<std::uint32_t>(station + 1) * kWindowDistance;
}

// Of a thousand requests. Those that start processes take a thousand times as long as the others.
constexpr std::uint32_t kOfAll = 1000;
constexpr std::uint32_t kMemory = 330;
constexpr std::uint32_t kChecksum = kMemory + 120;
constexpr std::uint32_t kBlock = kChecksum + 120;
constexpr std::uint32_t kI2c = kBlock + 120;
constexpr std::uint32_t kPort = kI2c + 100;
constexpr std::uint32_t kMalformed = kPort + 90;
constexpr std::uint32_t kUnknown = kMalformed + 45;
constexpr std::uint32_t kSerial = kUnknown + 12;
constexpr std::uint32_t kGraphic = kSerial + 8;
constexpr std::uint32_t kStatus = kGraphic + 30;
constexpr std::uint32_t kAcknowledgement = kStatus + 20;
constexpr std::uint32_t kExec = kAcknowledgement + 3;

} // namespace

RequestSource::RequestSource(std::uint64_t seed, int station, const Medium::Place& medium,
                             const std::string& buildStamp)
    : m_dice(seed), m_scratch(m_dice, windowOf(station), medium), m_unit(m_dice, station, buildStamp) {}

Exchange RequestSource::next() {
    const std::uint32_t choice = m_dice.below(kOfAll);
    if (choice < kMemory)
        return m_scratch.memory();
    if (choice < kChecksum)
        return m_scratch.checksum();
    if (choice < kBlock)
        return m_scratch.block();
    if (choice < kI2c)
        return m_unit.i2c();
    if (choice < kPort)
        return m_unit.port();
    if (choice < kMalformed)
        return malformedRequest(m_dice);
    if (choice < kUnknown)
        return m_unit.unknown();
    if (choice < kSerial)
        return m_unit.serial();
    if (choice < kGraphic)
        return m_unit.graphic();
    if (choice < kStatus)
        return m_unit.status();
    if (choice < kAcknowledgement)
        return m_unit.acknowledgement();
    return choice < kExec ? m_unit.exec() : m_unit.audio();
}
