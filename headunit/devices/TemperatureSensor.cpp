#include "devices/TemperatureSensor.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace headunit {
namespace {

enum Register : std::size_t { Temperature = 0, Configuration = 1, LowerLimit = 2, UpperLimit = 3 };
constexpr std::size_t kPointerMask = 3;

constexpr double kAtStart = 25;
constexpr double kLowerLimitAtStart = 75;
constexpr double kUpperLimitAtStart = 80;

constexpr double kStepsOfDegree = 16;
constexpr int kUnusedSteps = 16; // of the 16 bits the lowest four are unused
constexpr unsigned kBitsOfByte = 8;

/// Two bytes, the higher one first.
std::string registerOf(double degrees) {
    const int steps = static_cast<int>(std::lround(degrees * kStepsOfDegree)) * kUnusedSteps;
    const auto bits = static_cast<std::uint16_t>(steps);
    return {static_cast<char>(bits >> kBitsOfByte), static_cast<char>(bits)};
}

double degreesOf(const std::string& bytes) {
    const unsigned high = static_cast<unsigned char>(bytes[0]);
    const unsigned low = static_cast<unsigned char>(bytes[1]);
    const auto value = static_cast<std::int16_t>((high << kBitsOfByte) | low);
    return value / (kStepsOfDegree * kUnusedSteps);
}

} // namespace

TemperatureSensor::TemperatureSensor() {
    m_registers[Temperature] = registerOf(kAtStart);
    m_registers[Configuration] = std::string(1, '\0');
    m_registers[LowerLimit] = registerOf(kLowerLimitAtStart);
    m_registers[UpperLimit] = registerOf(kUpperLimitAtStart);
}

void TemperatureSensor::write(std::string_view bytes) {
    if (bytes.empty())
        return;
    m_pointer = static_cast<unsigned char>(bytes.front()) & kPointerMask;
    if (m_pointer == Temperature)
        return;
    bytes.remove_prefix(1);
    std::string& target = m_registers[m_pointer];
    bytes.copy(target.data(), target.size());
}

std::string TemperatureSensor::read(std::size_t count) {
    const std::string& source = m_registers[m_pointer];
    std::string bytes;
    while (bytes.size() < count)
        bytes.append(source, 0, std::min(source.size(), count - bytes.size()));
    return bytes;
}

std::string TemperatureSensor::description() const {
    std::ostringstream text;
    text << "temperature " << temperature();
    return text.str();
}

double TemperatureSensor::temperature() const {
    return degreesOf(m_registers[Temperature]);
}

bool TemperatureSensor::setTemperature(double degrees) {
    if (!(degrees >= kColdest && degrees <= kHottest))
        return false;
    m_registers[Temperature] = registerOf(degrees);
    return true;
}

} // namespace headunit
