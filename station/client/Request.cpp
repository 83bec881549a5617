#include "client/Request.h"

#include "client/Failure.h"
#include "client/Quoting.h"
#include "wire/Line.h"

namespace station {

namespace {
constexpr std::size_t kFrame = 3;  // what stands around the words
constexpr std::size_t kQuotes = 3; // what an argument needs at most beside its own characters
} // namespace

bool isCommandName(std::string_view name) {
    constexpr std::string_view kAlphanumeric =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    return !name.empty() && name.find_first_not_of(kAlphanumeric) == std::string_view::npos;
}

Request::Request(std::string_view name, const std::vector<std::string>& arguments) : m_name(name) {
    if (!isCommandName(name))
        throw Failure(Failure::Kind::InvalidRequest,
                      "invalid command name '" + m_name + "': only letters and digits are allowed");
    std::size_t size = m_name.size() + kFrame;
    for (const std::string& argument : arguments)
        size += argument.size() + kQuotes;
    m_bytes.reserve(size);
    m_bytes += wire::kStartOfText;
    m_bytes += m_name;
    for (const std::string& argument : arguments) {
        m_bytes += ' ';
        appendQuoted(m_bytes, argument);
    }
    m_bytes += wire::kEndOfText;
    m_bytes += wire::kLineFeed;
}

} // namespace station
