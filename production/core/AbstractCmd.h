#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/AbstractListener.h"
#include "core/Answer.h"
#include "core/StringFormat.h"

/// The base of every test command: what a request looks like, what is checked before a command runs, and
/// how its response becomes an answer. A command is a singleton that lives as long as the process.
///
/// Binary request frame: D0 the number of bytes in the frame (2..255), D1 the command's id, D2 the
/// sub-command, D3... parameters; numbers are big-endian. ASCII request: a list of tokens, token 0 the
/// command's name; words and quoted strings end in a zero byte, decoded hex and base64 data do not.
///
/// One command runs at a time, on the dispatcher's thread; nothing here has a lock of its own.
class AbstractCmd {
public:
    /// `id` 0 or an empty `name` leaves the command unreachable by that protocol. With `registerSelf`
    /// the command announces itself to the `Handler`, by name first.
    AbstractCmd(char id, std::string name, bool registerSelf);
    AbstractCmd(const AbstractCmd&) = delete;
    AbstractCmd& operator=(const AbstractCmd&) = delete;

    /// Runs an ASCII request.
    virtual ProcessResponse* process(std::vector<std::vector<char>>& tokens) = 0;
    /// Runs a binary request that has passed `tavrin_preCheck`.
    virtual ProcessResponse* process(std::vector<unsigned char>* request) = 0;
    /// Releases the scratch buffer that all commands share: never destroy two commands.
    virtual ~AbstractCmd();

    /// Where output made during the next request goes; null drops it.
    void setListener(AbstractListener* listener);

    // --- The scratch buffer, shared by the commands that move and checksum data. ---

    /// Allocates the buffer, zeroed, unless it exists. Pages cost memory once they are touched.
    static void createGlobalBuffer();
    /// Null when there is no memory for it.
    static unsigned char* getGlobalBuffer();
    /// In bytes; 0 when there is no memory for it.
    static unsigned int getGlobalBufferSize();

    // --- Binary protocol ---

    signed char tavrin_getName() const;
    /// D0; -1 for an empty request, 0 for a null one: neither is a length that a command expects.
    int tavrin_getRequestLen(const std::vector<unsigned char>* request) const;
    /// D2; -1 when there is none.
    int tavrin_getCommand(const std::vector<unsigned char>* request) const;
    /// Checks the frame and runs the request when it is valid.
    ProcessResponse* tavrin_preCheck(std::vector<unsigned char>* request);
    /// The frame to answer, empty for none. Takes the response over, except one with code 1. An error's
    /// message is sent as a debug frame first. Throws std::out_of_range for a request without D1..D3.
    std::vector<unsigned char> tavrin_exec(std::vector<unsigned char>* request,
                                           ProcessResponse* response);
    /// Writes the answer frame with the response's code and at most 247 bytes of payload into the
    /// response. Throws std::out_of_range, after a debug frame, for a request without D1..D3.
    void tavrin_fillDefaultResponse(const std::vector<unsigned char>* request,
                                    ProcessResponseTavrin* response, unsigned char payloadLen,
                                    const unsigned char* payload);
    void tavrin_fillDefaultResponse(const std::vector<unsigned char>* request,
                                    ProcessResponseTavrin* response,
                                    std::vector<unsigned char>& payload);
    /// The generic error as a response with its frame filled in; bytes that the request lacks are 0.
    std::unique_ptr<ProcessResponseTavrin> tavrin_generateGenericError(
        const std::vector<unsigned char>* request, const std::string& text);
    std::unique_ptr<ProcessResponseTavrin> tavrin_generateGenericError(
        const std::vector<unsigned char>* request, const char* text);
    /// Sends at most 253 characters to the listener as a debug frame.
    void tavrin_sendAsyncDebug(const std::string& text);
    void tavrin_sendAsyncDebug(const char* text);

    // --- ASCII protocol ---

    std::string ascii_getName() const;
    /// A number in decimal, 0x hexadecimal or 0 octal notation; 0 when there is none. Numbers from 2^31
    /// to 2^32-1 keep their 32 bits; beyond 32 bits it is the highest or the lowest int.
    int ascii_getInt(const std::vector<char>& token) const;
    /// The line to answer, without framing; empty for none. Takes the response over, except one with
    /// code 1. An error's message is sent as an "Info" line first, to the listener of the request that
    /// runs or to a given one. With a given one it needs not be the dispatcher that calls.
    std::string ascii_exec(ProcessResponse* response);
    std::string ascii_exec(ProcessResponse* response, AbstractListener* listener) const;
    /// The bytes that the pairs of hexadecimal digits in `text` stand for; all other characters and a
    /// last unpaired digit are skipped.
    std::vector<unsigned char> ascii_buildHexVector(const std::string& text) const;
    std::string ascii_buildHexString(const std::vector<unsigned char>& bytes, bool wrap) const;
    /// "base64(...)" of the first `len` bytes, or of all.
    std::string ascii_buildBase64String(const std::vector<unsigned char>& bytes, unsigned int len) const;
    std::string ascii_buildBase64String(const std::vector<unsigned char>& bytes) const;

protected:
    AbstractListener* listener() const { return m_listener; }

    /// The answers to a request that was carried out: a successful `result` becomes one with these
    /// bytes, or with the text that `text` makes, which is called for it only; any other stays what it
    /// is.
    Answer tavrin_answer(const std::vector<unsigned char>* request, Answer result,
                         std::vector<unsigned char>& payload);
    template <typename Text>
    static Answer ascii_answer(Answer result, Text text) {
        return failed(*result) ? std::move(result) : asciiSuccess(text());
    }

private:
    std::string errorLine(ProcessResponse& response, AbstractListener* listener) const;

    AbstractListener* m_listener = nullptr;
    char m_id;
    std::string m_name;

    static unsigned char* m_buffer;
    static unsigned int m_size;
};
