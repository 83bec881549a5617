#include "client/UnitFrame.h"

#include <utility>

#include "client/StatusPayload.h"
#include "wire/Frame.h"

namespace station {

namespace {

constexpr std::size_t kDebugText = 2;
constexpr std::size_t kCode = 4;
constexpr int kBitsPerByte = 8;

} // namespace

UnitFrame::UnitFrame(std::string bytes) : m_bytes(std::move(bytes)) {}

std::string UnitFrame::text() const {
    return m_bytes.substr(kDebugText);
}

std::uint32_t UnitFrame::code() const {
    std::uint32_t code = 0;
    for (std::size_t position = kCode; position < wire::kAnswerHeader; ++position)
        code = code << kBitsPerByte | byteAt(position);
    return code;
}

std::string_view UnitFrame::payload() const {
    return std::string_view(m_bytes).substr(wire::kAnswerHeader);
}

bool UnitFrame::isStatus() const {
    return id() == kStatusId && subCommand() == kStatusEcho && code() == 0 &&
           payload().size() == kStatusPayload;
}

} // namespace station
