#pragma once

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// What a fake between the code under test and the system's functions is made of: notes the calls, in
/// their order, and lets chosen ones end as the test says. What the script did not use fails the test.
/// Any thread.
class CallScript {
public:
    /// Runs in place of a call, or just before it when it gives no result. Sets errno itself.
    using Step = std::function<std::optional<long>()>;

    CallScript() = default;
    ~CallScript();
    CallScript(const CallScript&) = delete;
    CallScript& operator=(const CallScript&) = delete;

    /// One step for each of the next calls of `function`; those after them go to the system.
    void script(const std::string& function, const std::vector<Step>& steps);
    void failNext(const std::string& function, int error) { script(function, {failing(error)}); }

    static Step failing(int error);
    static Step returning(long result);
    /// The call goes to the system.
    static Step passing();
    /// `action` runs, then the call goes to the system.
    static Step after(std::function<void()> action);

    /// What has been called, in its order, since the start or the last `forget`.
    std::vector<std::string> all() const;
    void forget();

    /// The limits that `poll` was called with, in its order.
    std::vector<int> pollLimits() const;

    /// For the wrappers: notes the call and gives the result that the script has for it.
    std::optional<long> on(const char* function);
    void note(const char* what);
    void notePollLimit(int limit);
    bool isScripted(const char* function) const;

    /// For the wrappers: what `calls`, if there are any, say of a call, or what the system makes of it.
    template <typename Function, typename... Arguments>
    static auto call(CallScript* calls, const char* name, Function real, Arguments... arguments) {
        const std::optional<long> result = calls == nullptr ? std::nullopt : calls->on(name);
        return result ? static_cast<decltype(real(arguments...))>(*result) : real(arguments...);
    }

private:
    mutable std::mutex m_mutex; // guards the next
    std::vector<std::string> m_calls;
    std::vector<int> m_pollLimits;
    std::map<std::string, std::deque<Step>> m_script;
};
