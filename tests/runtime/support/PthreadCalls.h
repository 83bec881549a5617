#pragma once

#include <pthread.h>

#include <map>
#include <string>

/// Stands between the code under test and the system's thread functions: counts the calls, notes what
/// they were given, and lets chosen ones fail. Make at most one at a time.
class PthreadCalls {
public:
    PthreadCalls();
    ~PthreadCalls();
    PthreadCalls(const PthreadCalls&) = delete;
    PthreadCalls& operator=(const PthreadCalls&) = delete;

    /// Lets every call of `function` fail, from now on.
    void fail(const std::string& function) { m_failing = function; }
    void failNothing() { m_failing.clear(); }
    int count(const std::string& function) const;

    /// For the wrappers: counts the call and tells whether it shall fail.
    bool failsNow(const std::string& function);

    /// The same for functions that any thread calls at any time: these are not counted.
    bool isFailing(const char* function) const { return m_failing == function; }

    int mutexType = -1;              ///< of the last mutex
    clockid_t clock = -1;            ///< of the last condition
    void* (*entry)(void*) = nullptr; ///< of the last thread
    void* argument = nullptr;        ///< of the last thread
    int detachState = -1;            ///< of the last thread
    std::size_t guardBytes = 0;      ///< of the last thread
    std::size_t stackBytes = 0;      ///< of the last thread

private:
    std::string m_failing;
    std::map<std::string, int> m_counts;
};
