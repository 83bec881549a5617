#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/MemoryGuard.h"

/// What the generated scanner (`serial_lexer.l`) returns behind "base64(", beside the 0 at the end of a
/// command or a line: the characters that follow, often by far the most of a line, can be taken at once.
constexpr int kBase64Begins = 1;

/// What the scanner's actions make of one line. Each line has its own, so that any number of them can be
/// scanned at once. Throws std::bad_alloc for what does not fit into memory.
class LineScan {
public:
    std::vector<std::vector<char>> mylist; ///< the tokens
    std::string echoes;                    ///< what no rule wants, for standard output
    /// Whether a command's name has emptied the list; else
    /// the tokens come behind those of the command before.
    bool isNewList = false;

    /// The text with its terminating zero.
    void addToList(const char* text);
    /// The bytes that the pairs of hexadecimal digits
    /// stand for; looks at the first 2048 characters only.
    void addHexToList(char* text);
    /// The decoded bytes in a buffer of three bytes for each four characters; what could not be decoded
    /// is 0.
    void addBase64ToList(const char* text);
    /// The same for the base64 characters at the beginning
    /// of `text`, if there are any. Returns how many.
    std::size_t addBase64Run(std::string_view text);
    /// Walks the list; prints nothing.
    void printList() {}
    /// Empties the list, as a command's name does.
    void clearList();

    /// Keeps text that no rule wants.
    void echo(const char* text, std::size_t length);
    /// Keeps what a length header said.
    void echoLength(const char* header, int length);

private:
    std::vector<char>& append(std::size_t size);

    MemoryGuard m_tokenMemory;
    MemoryGuard m_echoMemory;
};

/// The start state that a scanner is in, and another one to begin in. `scanner` is the generator's.
int startStateOf(void* scanner);
void beginIn(int state, void* scanner);
