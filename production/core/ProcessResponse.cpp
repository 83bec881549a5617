#include "core/ProcessResponse.h"

#include <cstdarg>

#include "core/ProcessResponseAscii.h"
#include "core/ProcessResponseTavrin.h"
#include "core/StringFormat.h"

namespace {

constexpr std::size_t kFirstRoom = 256;

} // namespace

std::atomic<unsigned int> ProcessResponse::m_counter{0};

ProcessResponse::ProcessResponse(unsigned int responseCode) : code(responseCode) {
    ++m_counter;
}

ProcessResponse::ProcessResponse(unsigned int responseCode, const char* format, ...)
    : ProcessResponse(responseCode) {
    va_list arguments;
    va_start(arguments, format);
    message = vstring_format(kFirstRoom, format, arguments);
    va_end(arguments);
}

ProcessResponse::ProcessResponse(const ProcessResponse& other)
    : code(other.code), message(other.message), protocol(other.protocol) {
    ++m_counter;
}

ProcessResponse::~ProcessResponse() {
    --m_counter;
}

ProcessResponseTavrin::ProcessResponseTavrin(unsigned int responseCode, const char* format, ...)
    : ProcessResponse(responseCode) {
    protocol = 't';
    va_list arguments;
    va_start(arguments, format);
    message = vstring_format(kFirstRoom, format, arguments);
    va_end(arguments);
}

ProcessResponseAscii::ProcessResponseAscii(unsigned int responseCode, const char* format, ...)
    : ProcessResponse(responseCode) {
    protocol = 'a';
    va_list arguments;
    va_start(arguments, format);
    message = vstring_format(kFirstRoom, format, arguments);
    va_end(arguments);
}
