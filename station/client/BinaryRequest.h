#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/Answer.h"
#include "client/UnitFrame.h"

namespace station {

/// One command as it travels over a binary link, and what its answer looks like. Immutable: any thread.
class BinaryRequest {
public:
    /// The frame for a command by its name, with the arguments of its ASCII form:
    ///
    ///     status [01|02]                         02 73, 03 73 01, 03 73 02
    ///     exec command SECONDS TEXT              length 63 01 SECONDS (two bytes) TEXT
    ///     ack                                    02 06
    ///
    /// Throws `Failure` (`InvalidRequest`), saying what to do instead, for what has no binary form:
    /// other names and arguments, SECONDS outside 0..65535, a TEXT of no or more than 250 characters or
    /// with one outside 20..7E. TEXT may be `hex(...)` or `base64(...)`.
    static BinaryRequest encode(std::string_view name, const std::vector<std::string>& arguments);

    /// The given bytes as they are: nothing is checked, also not the length byte. The argument is
    /// `hex(...)` or `base64(...)`; anything else throws `Failure` (`InvalidRequest`).
    static BinaryRequest raw(const std::vector<std::string>& arguments);

    const std::string& bytes() const { return m_bytes; }

    /// True when the bytes were given and not made here, so that any answer may come.
    bool isRaw() const { return m_kind == Kind::Raw; }

    /// True when the answer is a status, which looks like a unit's announcement.
    bool asksForStatus() const { return m_kind == Kind::Status; }

    /// False for a command that absorbs what it is sent.
    bool isAnswered() const;

    /// True when an answer frame is one to this request, a refusal included.
    bool isAnsweredBy(const UnitFrame& frame) const;

    /// What such a frame says. The text is the status in words, other payload as text when it is
    /// printable and as hex(...) when not, "Error 0x..." for a refusal, and empty for raw bytes.
    Answer answer(const UnitFrame& frame) const;

private:
    enum class Kind { Status, Text, Ack, Raw };

    BinaryRequest(Kind kind, std::string bytes);
    static BinaryRequest encodeStatus(const std::vector<std::string>& arguments);
    static BinaryRequest encodeExec(const std::vector<std::string>& arguments);
    static BinaryRequest encodeAck(const std::vector<std::string>& arguments);

    Kind m_kind;
    std::string m_bytes;
};

} // namespace station
