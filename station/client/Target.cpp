#include "client/Target.h"

#include <arpa/inet.h>

#include <charconv>
#include <optional>

#include "client/Failure.h"

namespace station {

namespace {

constexpr std::string_view kScheme = "tcp:";

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

std::optional<Target> parseHostAndPort(std::string_view text) {
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
    return Target{std::string(host), *port};
}

} // namespace

Target Target::parse(std::string_view text) {
    const bool hasScheme = text.substr(0, kScheme.size()) == kScheme;
    const auto target = hasScheme ? parseHostAndPort(text.substr(kScheme.size())) : std::nullopt;
    if (!target)
        throw Failure(Failure::Kind::InvalidRequest,
                      "invalid target '" + std::string(text) +
                          "': expected tcp:HOST:PORT, for example tcp:127.0.0.1:15051 or "
                          "tcp:[::1]:15051");
    return *target;
}

std::string Target::text() const {
    const bool needsBrackets = host.find(':') != std::string::npos;
    const std::string shownHost = needsBrackets ? "[" + host + "]" : host;
    return std::string(kScheme) + shownHost + ":" + std::to_string(port);
}

} // namespace station
