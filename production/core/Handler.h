#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "core/AbstractListener.h"
#include "runtime/Condition.h"
#include "runtime/Mutex.h"
#include "runtime/StatedThread.h"

/// Knows every command and runs them, one at a time, on its own thread.
///
/// A front end calls `handleCommand` from whatever thread it likes. Requests queue in the order of their
/// arrival; nobody is refused. From the moment a command gets its listener until it has made its
/// response, no other request touches any command, and afterwards the command forgets the listener. A
/// binary answer, which is short, is built with it; an ASCII answer, which may be huge, on the caller's
/// thread. The waiting caller holds no lock, and nothing here waits for a peer.
///
/// Lock order: `requestLock` and `doneLock` are never held together, `registryLock` with neither.
class Handler : public StatedThread {
public:
    /// The singleton; it is never destroyed, since threads may use it until the process is gone.
    static Handler* getInstance();

    /// Creates all commands and starts the dispatcher. Call it once.
    void initHandler();

    /// False when `cmd` is null or the id or name is taken; standard error then says why.
    bool registerHandler(char id, AbstractCmd* cmd);
    bool registerHandler(std::string name, AbstractCmd* cmd);

    /// A letter as itself, any other id as "0x" and two hexadecimal digits.
    std::string getHandlerName(unsigned char id) const;

    /// Runs a binary request, which is lent until the call returns, and returns the frame to answer;
    /// empty for none. Throws std::out_of_range for a request too short to be looked up or answered.
    std::vector<unsigned char> handleCommand(std::vector<unsigned char>* request,
                                             AbstractListener* listener);

    /// Runs an ASCII request and returns the line to answer, without framing; empty for none.
    std::string handleCommand(std::vector<std::vector<char>> tokens, AbstractListener* listener);

    /// Has the dispatcher run `action` in its turn, while no command runs, and waits for its end: for a
    /// front end that uses a command directly. What `action` throws comes out here.
    void runExclusively(std::function<void()> action);

    /// The dispatcher.
    void threadLoop(System::Thread* self) override;

private:
    struct Request;

    Handler();

    void runAndWait(const std::shared_ptr<Request>& request);
    std::shared_ptr<Request> nextRequest();
    void run(Request& request);
    void runCommand(Request& request);
    void runBinary(Request& request);
    void runAscii(Request& request);
    /// What is left to do of an ASCII request, on the caller's thread.
    static std::string answerLine(Request& request);

    std::map<char, AbstractCmd*> m_commandsById;
    std::map<std::string, AbstractCmd*> m_commandsByName;
    System::Mutex m_registryLock;
    System::Condition m_requestReady;
    System::Mutex m_requestLock; // guards m_pending
    System::Mutex m_doneLock;    // taken to set Request::done and to sleep until it is set
    std::deque<std::shared_ptr<Request>> m_pending; // in the order of arrival

    static System::Mutex s_singleton_mutex;
};
