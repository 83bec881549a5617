#pragma once

#include <deque>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "terminal/Console.h"

namespace station {

/// A console without a person: what is typed is a script, whose end is the end of the input unless the
/// script is for a terminal. Throws std::logic_error when it is read on and on.
class ScriptedConsole : public Console {
public:
    std::deque<std::string> typed; ///< an empty text is a wait in which nothing is typed
    bool isPerson = false;
    std::function<void()> onWrite = [] {};

    bool isTerminal() const override { return isPerson; }
    void begin() override { calls.emplace_back("begin"); }
    void end() override { calls.emplace_back("end"); }

    Input read(Seconds wait, std::size_t most) override {
        waits.push_back(wait.count());
        if (waits.size() > kMostReads)
            throw std::logic_error("reads for ever");
        if (typed.empty())
            return {{}, !isPerson};
        std::string bytes = typed.front().substr(0, most);
        typed.front().erase(0, bytes.size());
        if (typed.front().empty())
            typed.pop_front();
        return {bytes, !isPerson && typed.empty()};
    }

    void write(std::string_view bytes) override {
        onWrite();
        shown += bytes;
    }

    std::string shown;
    std::vector<double> waits; ///< seconds
    std::vector<std::string> calls;

private:
    static constexpr std::size_t kMostReads = 10'000;
};

} // namespace station
