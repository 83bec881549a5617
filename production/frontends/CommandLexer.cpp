#include "frontends/CommandLexer.h"

#include <limits>
#include <memory>
#include <new>
#include <string>

#include "core/MemoryGuard.h"
#include "core/StandardStream.h"
#include "frontends/serial_lexer.h"
#include "runtime/Mutex.h"
#include "serial_lexer.yy.h"

namespace {

// What the scanner wants to see behind the text.
constexpr std::string_view kEndOfBuffer("\0\0", 2);

System::Mutex s_lexerLock(System::Mutex::Normal);

struct ReleaseBuffer {
    void operator()(yy_buffer_state* buffer) const { yy_delete_buffer(buffer); }
};

using Buffer = std::unique_ptr<yy_buffer_state, ReleaseBuffer>;

/// Shows what the rules echoed: now, and not when a buffer happens to be full.
struct ShownEchoes {
    ShownEchoes() = default;
    ShownEchoes(const ShownEchoes&) = delete;
    ShownEchoes& operator=(const ShownEchoes&) = delete;
    ~ShownEchoes() { StandardStream::output().write(text); }

    std::string text;
};

std::size_t bytesIn(const std::vector<std::vector<char>>& tokens) {
    std::size_t bytes = tokens.size() * sizeof(std::vector<char>);
    for (const auto& token : tokens)
        bytes += token.size();
    return bytes;
}

/// What is scanned next is `text` from there on.
Buffer scanFrom(std::string& text, std::size_t begin) {
    Buffer buffer(yy_scan_buffer(text.data() + begin, text.size() - begin));
    yy_switch_to_buffer(buffer.get());
    return buffer;
}

/// Scans `line` into `mylist`.
void fillList(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    // The scanner counts in int.
    if (line.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) - kEndOfBuffer.size())
        throw std::bad_alloc();
    MemoryGuard::require(line.size());
    // The scanner's own copy would be lost if memory ran out right behind it.
    std::string text;
    text.reserve(line.size() + kEndOfBuffer.size());
    text.append(line).append(kEndOfBuffer);
    Buffer buffer = scanFrom(text, 0);
    while (yylex() == kBase64Begins) {
        const auto begin = static_cast<std::size_t>(yytext - text.data() + yyleng);
        buffer = scanFrom(text, begin + addBase64Run(line.substr(begin)));
    }
    printList();
}

} // namespace

std::vector<std::vector<char>> CommandLexer::scan(std::string_view line) {
    ShownEchoes echoes; // when the lock is free again
    const System::Lock lock(s_lexerLock);
    try {
        fillList(line);
        echoes.text = takeEchoes();
        MemoryGuard::require(bytesIn(mylist));
        return mylist;
    } catch (...) {
        if (echoes.text.empty())
            echoes.text = takeEchoes();
        // Half a command must not be taken for the next one's leftovers; and its memory is needed.
        std::vector<std::vector<char>>().swap(mylist);
        yylex_destroy();
        throw;
    }
}
