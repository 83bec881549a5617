#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "client/Answer.h"
#include "client/UnitFrame.h"
#include "client/forms/BinaryForm.h"

namespace station {

/// One command as it travels over a binary link, and what its answer looks like. Immutable: any thread.
class BinaryRequest {
public:
    /// The frame for a command by its name, with the arguments of its ASCII form; the answer reads the
    /// same in both forms, but for the files of `status` and the output of `exec`, which are shown as
    /// text. See `binaryForm` for what has a binary form. Throws `Failure` (`InvalidRequest`), saying
    /// what to do instead, for what has none.
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

    /// What such a frame says; the text is "Error 0x..." for a refusal, and empty for raw bytes. Throws
    /// `Failure` (`MalformedAnswer`) for a success with a payload that this request cannot have.
    Answer answer(const UnitFrame& frame) const;

private:
    enum class Kind { Status, Command, Raw };

    BinaryRequest(Kind kind, std::string bytes, AnswerText text);

    Kind m_kind;
    std::string m_bytes;
    AnswerText m_text;
};

} // namespace station
