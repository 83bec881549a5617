#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What the generated scanner (`serial_lexer.l`) and its actions share. All of it is one process-wide
/// state: use it through `CommandLexer`, which holds the lock.

/// What the scanner returns behind "base64(", beside the 0 at the end of a command or a line: the
/// characters that follow, often by far the most of a line, can be taken at once.
constexpr int kBase64Begins = 1;

/// The tokens of the last command, its name first. Only the next command's name empties it.
extern std::vector<std::vector<char>> mylist;

/// The text with its terminating zero.
void addToList(const char* text);
/// The bytes that the pairs of hexadecimal digits stand for; looks at the first 2048 characters only.
void addHexToList(char* text);
/// The decoded bytes in a buffer of three bytes for each four characters; what could not be decoded is
/// 0.
void addBase64ToList(const char* text);
/// The same for the base64 characters at the beginning of `text`, if there are any. Returns how many.
std::size_t addBase64Run(std::string_view text);
/// Walks the list; prints nothing.
void printList();
/// Keeps text that no rule wants for standard output.
void echo(const char* text, std::size_t length);
/// Keeps what a length header said for standard output.
void echoLength(const char* header, int length);
/// What has been kept since the last call.
std::string takeEchoes();
/// Empties the list, as a command's name does.
void clearList();
