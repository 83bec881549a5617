#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/AbstractCmd.h"
#include "runtime/Mutex.h"

/// Reports who is answering: build stamp, product, board revision, protocol version; and identity files.
class sReadCmd : public AbstractCmd {
public:
    /// Why a status is built.
    enum Status {
        Startup = 0,  ///< unrequested, by a front end that has reached its station
        Requested = 1 ///< the answer to a request
    };

    static sReadCmd* getInstance();

    ProcessResponse* process(std::vector<std::vector<char>>& tokens) override {
        return run(tokens).release();
    }
    ProcessResponse* process(std::vector<unsigned char>* request) override;

    /// The binary status, with its frame filled in. The request is changed: it becomes what is echoed.
    ProcessResponse* sendStatusTavrin(std::vector<unsigned char>* request, Status status);
    /// The status as a front end announces itself with it.
    ProcessResponse* tavrin_getStartupStatus();
    /// Reads the board's revision, unless it is known, so that the next binary status does not wait for
    /// it on the dispatcher. For the front end that announces itself, on its own thread: nobody else
    /// asks for binary statuses.
    void readRevisionAhead();
    ProcessResponse* sendStatusAscii();

private:
    sReadCmd();

    Answer run(const std::vector<std::vector<char>>& tokens);
    Answer sendFile(const std::vector<unsigned char>* request);
    Answer statusFrame(const std::vector<unsigned char>& echoed);
    Answer statusText();

    enum class RevisionRead { Ok, CannotOpen, CannotRead };
    struct Revision {
        RevisionRead result;
        std::uint32_t value; ///< when it is Ok
    };

    static Revision readRevision();
    Answer findRevision();
    bool noteStatusSent(Status status);

    std::optional<Revision> m_revisionAhead;

    static std::uint16_t kruversion;
    static bool kruversion_checked;
    static bool startupSend;
    static System::Mutex s_singleton_mutex;
};
