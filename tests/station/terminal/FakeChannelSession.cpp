#include "FakeChannelSession.h"

#include <algorithm>

#include "client/Quoting.h"

namespace station {

namespace {

constexpr char kFetch[] = "getall 1";

} // namespace

void FakeChannelSession::begin(const std::string& name, const std::vector<std::string>& arguments) {
    std::string request = name == "serial" ? "" : name;
    for (const std::string& argument : arguments)
        request += (request.empty() ? "" : " ") + argument;
    m_requests.push_back(request);
}

Answer FakeChannelSession::finish(const InfoSink& onInfo) {
    const std::string request = m_requests.back();
    for (const std::string& info : infos)
        onInfo(info);
    if (before)
        if (const auto answer = before(request, m_requests.size()))
            return *answer;
    if (request != kFetch)
        return {"ok"};
    std::string bytes;
    if (!incoming.empty()) {
        bytes = incoming.front();
        incoming.pop_front();
    }
    return {"getall 0x01 " + base64Argument(bytes)};
}

std::vector<std::string> FakeChannelSession::requests() const {
    std::vector<std::string> requests;
    for (std::size_t at = 0; at < m_requests.size();) {
        std::size_t end = at + 1;
        while (m_requests[at] == kFetch && end < m_requests.size() && m_requests[end] == kFetch)
            ++end;
        const std::size_t times = end - at;
        requests.push_back(m_requests[at] +
                           (times == 1 ? "" : " (" + std::to_string(times) + " times)"));
        at = end;
    }
    return requests;
}

std::size_t FakeChannelSession::count(const std::string& request) const {
    return static_cast<std::size_t>(std::count(m_requests.begin(), m_requests.end(), request));
}

} // namespace station
