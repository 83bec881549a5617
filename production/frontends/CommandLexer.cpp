#include "frontends/CommandLexer.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "core/MemoryGuard.h"
#include "core/StandardStream.h"
#include "frontends/LineAssembler.h"
#include "frontends/serial_lexer.h"
#include "platform/Memory.h"
#include "runtime/Mutex.h"
#include "serial_lexer.yy.h"

namespace {

using Tokens = std::vector<std::vector<char>>;

// What the scanner wants to see behind the text.
constexpr std::string_view kEndOfBuffer("\0\0", 2);

/// Tokens in two blocks of memory: whoever lets go of them does not pay for their number.
class PackedTokens {
public:
    PackedTokens() = default;

    explicit PackedTokens(const Tokens& tokens) {
        std::size_t bytes = 0;
        for (const auto& token : tokens)
            bytes += token.size();
        MemoryGuard::require(bytes + tokens.size() * sizeof(std::size_t));
        m_bytes.reserve(bytes);
        m_ends.reserve(tokens.size());
        for (const auto& token : tokens) {
            m_bytes.append(token.data(), token.size());
            m_ends.push_back(m_bytes.size());
        }
    }

    Tokens unpacked() const {
        MemoryGuard::require(m_bytes.size() + m_ends.size() * (sizeof(std::vector<char>) + kBlock));
        Tokens tokens;
        tokens.reserve(m_ends.size());
        std::size_t begin = 0;
        for (const std::size_t end : m_ends) {
            tokens.emplace_back(m_bytes.begin() + static_cast<std::ptrdiff_t>(begin),
                                m_bytes.begin() + static_cast<std::ptrdiff_t>(end));
            begin = end;
        }
        return tokens;
    }

    /// Whether the allocator should be asked to give back what they leave.
    bool areMany() const {
        return m_bytes.size() + m_ends.size() * sizeof(std::size_t) > CommandLexer::kLongLine;
    }

private:
    static constexpr std::size_t kBlock = 32; // at least, on the heap

    std::string m_bytes;
    std::vector<std::size_t> m_ends;
};

using KeptTokens = std::shared_ptr<const PackedTokens>; // null for none

/// What lines leave to the next one, whoever sends that. A line begins with what was left when its scan
/// began, and leaves its own when it ends, so that no line waits for another.
struct Leftovers {
    int startState = 0; // outside of a command
    KeptTokens mylist;
};

System::Mutex s_lexerLock(System::Mutex::Normal); // guards s_leftovers, and is held for moments only
Leftovers& s_leftovers = *new Leftovers;

Leftovers currentLeftovers() {
    const System::Lock lock(s_lexerLock);
    return s_leftovers;
}

/// Returns what was there, for the caller to let go of.
Leftovers replaceLeftovers(Leftovers after) {
    const System::Lock lock(s_lexerLock);
    return std::exchange(s_leftovers, std::move(after));
}

/// The same, as long as the list is still that one.
bool replaceLeftoversOf(const KeptTokens& list, Leftovers after) {
    const System::Lock lock(s_lexerLock);
    if (s_leftovers.mylist != list)
        return false;
    std::swap(s_leftovers, after);
    return true;
}

/// The generated scanner, for one line.
class Scanner {
public:
    Scanner(LineScan& scan, int startState) : m_scan(scan) {
        if (yylex_init_extra(&scan, &m_scanner) != 0)
            throw std::bad_alloc();
        beginIn(startState, m_scanner);
    }
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;
    ~Scanner() { yylex_destroy(m_scanner); }

    /// Returns the start state that the line ends in. Behind it there is room for the end of the buffer.
    int run(char* line, std::size_t size) {
        size = ::strnlen(line, size);
        // The scanner counts in int.
        if (size > static_cast<std::size_t>(std::numeric_limits<int>::max()) - kEndOfBuffer.size())
            throw std::bad_alloc();
        kEndOfBuffer.copy(line + size, kEndOfBuffer.size());
        m_end = line + size + kEndOfBuffer.size();
        // A buffer would be lost if memory ran out while the scanner makes a place for it, which it does
        // in two steps.
        for (int step = 0; step < 2; ++step)
            yy_switch_to_buffer(nullptr, m_scanner);
        scanFrom(line);
        while (yylex(m_scanner) == kBase64Begins)
            skipBase64();
        m_scan.printList();
        return startStateOf(m_scanner);
    }

private:
    /// Takes the characters behind "base64(".
    void skipBase64() {
        char* const begin = yyget_text(m_scanner) + yyget_leng(m_scanner);
        scanFrom(begin); // gives the character back that the scanner had ended its text with
        scanFrom(begin + m_scan.addBase64Run({begin, static_cast<std::size_t>(m_end - begin)}));
    }

    /// What is scanned next is the line from there on.
    void scanFrom(char* begin) {
        yy_buffer_state* const before = std::exchange(
            m_buffer, yy_scan_buffer(begin, static_cast<std::size_t>(m_end - begin), m_scanner));
        yy_delete_buffer(before, m_scanner);
    }

    LineScan& m_scan;
    yyscan_t m_scanner = nullptr;
    yy_buffer_state* m_buffer = nullptr;
    char* m_end = nullptr; // of the line and what the scanner wants to see behind it
};

KeptTokens keep(const Tokens& tokens) {
    return std::make_shared<const PackedTokens>(tokens);
}

/// The tokens of a line with a command's name, which are the new list.
Tokens replaceList(LineScan& scan, int startState, bool isLong) {
    KeptTokens before = replaceLeftovers({startState, keep(scan.mylist)}).mylist;
    // Behind a long line its front end asks for all.
    if (!isLong && before != nullptr && before->areMany()) {
        before.reset();
        System::returnFreedMemory();
    }
    return std::move(scan.mylist);
}

/// The tokens of a line without one: its own come behind those of the list as it is then.
Tokens extendList(const LineScan& scan, int startState) {
    for (;;) {
        const KeptTokens list = currentLeftovers().mylist;
        Tokens tokens = list == nullptr ? Tokens() : list->unpacked();
        tokens.insert(tokens.end(), scan.mylist.begin(), scan.mylist.end());
        if (replaceLeftoversOf(list, {startState, scan.mylist.empty() ? list : keep(tokens)}))
            return tokens;
    }
}

Tokens scanLine(LineAssembler& assembler, LineScan& scan) {
    const std::size_t size = assembler.line().size();
    const int startState =
        Scanner(scan, currentLeftovers().startState).run(assembler.data(kEndOfBuffer.size()), size);
    assembler.reset(); // its memory is wanted for what comes now
    const bool isLong = size > CommandLexer::kLongLine;
    return scan.isNewList ? replaceList(scan, startState, isLong) : extendList(scan, startState);
}

} // namespace

std::vector<std::vector<char>> CommandLexer::scan(LineAssembler& line) {
    LineScan scan;
    try {
        Tokens tokens = scanLine(line, scan);
        StandardStream::output().write(scan.echoes);
        return tokens;
    } catch (...) {
        // Half a command must not be taken for the next one's leftovers.
        replaceLeftovers({});
        StandardStream::output().write(scan.echoes);
        throw;
    }
}
