#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace station {

/// True for what the unit takes as the name of a command: one or more of A-Z a-z 0-9.
bool isCommandName(std::string_view name);

/// One command as it travels: STX NAME [SP ARGUMENT]... ETX LF. Immutable: any thread.
class Request {
public:
    /// Checks and encodes; each argument is quoted as `quoteArgument` says. Throws `Failure`
    /// (`InvalidRequest`) for a name or an argument that cannot travel.
    Request(std::string_view name, const std::vector<std::string>& arguments);

    const std::string& name() const { return m_name; }

    /// The complete line, framing included.
    const std::string& bytes() const { return m_bytes; }

private:
    std::string m_name;
    std::string m_bytes;
};

} // namespace station
