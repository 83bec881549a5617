#include "client/Target.h"

#include <arpa/inet.h>

#include <charconv>
#include <optional>

#include "client/Failure.h"

namespace station {

namespace {

constexpr std::string_view kTcpScheme = "tcp:";
constexpr std::string_view kSerialScheme = "serial:";

bool isHostName(std::string_view host) {
    constexpr std::string_view kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_";
    return !host.empty() && host.find_first_not_of(kLetters) == std::string_view::npos;
}

bool isIpv6Address(std::string_view host) {
    const std::string address(host.substr(0, host.find('%')));
    in6_addr parsed = {};
    return ::inet_pton(AF_INET6, address.c_str(), &parsed) == 1;
}

std::optional<std::uint16_t> parsePort(std::string_view text) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

std::optional<TcpTarget> parseHostAndPort(std::string_view text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string_view::npos)
        return std::nullopt;
    const auto port = parsePort(text.substr(colon + 1));
    if (!port)
        return std::nullopt;

    std::string_view host = text.substr(0, colon);
    const bool isBracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (isBracketed)
        host = host.substr(1, host.size() - 2);
    if (isBracketed ? !isIpv6Address(host) : !isHostName(host))
        return std::nullopt;
    return TcpTarget{std::string(host), *port};
}

/// What follows the scheme, or nothing for another scheme.
std::optional<std::string_view> afterScheme(std::string_view text, std::string_view scheme) {
    if (text.substr(0, scheme.size()) != scheme)
        return std::nullopt;
    return text.substr(scheme.size());
}

} // namespace

Target parseTarget(std::string_view text) {
    if (const auto rest = afterScheme(text, kTcpScheme))
        if (auto target = parseHostAndPort(*rest))
            return *std::move(target);
    if (const auto path = afterScheme(text, kSerialScheme); path && !path->empty())
        return SerialTarget{std::string(*path)};
    throw Failure(Failure::Kind::InvalidRequest,
                  "invalid target '" + std::string(text) +
                      "': expected tcp:HOST:PORT or serial:PATH, for example tcp:127.0.0.1:15051, "
                      "tcp:[::1]:15051 or serial:/dev/ttyUSB0");
}

std::string TcpTarget::text() const {
    const bool needsBrackets = host.find(':') != std::string::npos;
    const std::string shownHost = needsBrackets ? "[" + host + "]" : host;
    return std::string(kTcpScheme) + shownHost + ":" + std::to_string(port);
}

std::string SerialTarget::text() const {
    return std::string(kSerialScheme) + path;
}

} // namespace station
