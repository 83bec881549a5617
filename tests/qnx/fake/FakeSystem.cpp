#include "fake/FakeSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <utility>

namespace FakeSystem {
namespace {

struct State {
    std::vector<std::string> calls;
    std::map<std::string, std::deque<Result>> results;
};

State& state() {
    static State state;
    return state;
}

} // namespace

void reset() {
    state() = {};
}

void next(const std::string& call, Result result) {
    state().results[call].push_back(std::move(result));
}

void fail(const std::string& call, int error) {
    next(call, {-1, error, {}, {}});
}

std::vector<std::string> calls() {
    return std::exchange(state().calls, {});
}

std::vector<std::string> leftOver() {
    std::vector<std::string> names;
    for (const auto& [name, waiting] : state().results)
        names.insert(names.end(), waiting.size(), name);
    return names;
}

Result record(const std::string& call, const std::vector<std::string>& arguments, long usualValue) {
    std::string line = call;
    for (const std::string& argument : arguments)
        line += " " + argument;
    state().calls.push_back(line);
    std::deque<Result>& waiting = state().results[call];
    if (waiting.empty())
        return {usualValue, 0, {}, {}};
    Result result = std::move(waiting.front());
    waiting.pop_front();
    if (result.error != 0)
        errno = result.error;
    return result;
}

int recordInt(const std::string& call, const std::vector<std::string>& arguments, long usualValue) {
    return static_cast<int>(record(call, arguments, usualValue).value);
}

std::string hex(unsigned number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%x", number);
    return digits;
}

std::string text(const char* characters) {
    return characters == nullptr ? "null" : "\"" + std::string(characters) + "\"";
}

std::string pointer(const void* address) {
    return address == nullptr ? "null" : "set";
}

std::string bytes(const void* address, std::size_t size) {
    std::string line = "[";
    for (std::size_t at = 0; at < size; ++at) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char*>(address)[at]);
        line += digits;
    }
    return line + "]";
}

void deliver(const Result& result, void* address, std::size_t size) {
    const std::size_t count = std::min(size, result.bytes.size());
    if (count != 0)
        std::memcpy(address, result.bytes.data(), count);
}

} // namespace FakeSystem
