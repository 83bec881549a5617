#pragma once

#include <cstddef>
#include <vector>

/// What the generated scanner (`serial_lexer.l`) and its actions share. All of it is one process-wide
/// state: use it through `CommandLexer`, which holds the lock.

/// The tokens of the last command, its name first. Only the next command's name empties it.
extern std::vector<std::vector<char>> mylist;

/// The text with its terminating zero.
void addToList(const char* text);
/// The bytes that the pairs of hexadecimal digits stand for; looks at the first 2048 characters only.
void addHexToList(char* text);
/// The decoded bytes in a buffer of three bytes for each four characters; what could not be decoded is
/// 0.
void addBase64ToList(char* text);
/// Walks the list; prints nothing.
void printList();
/// Writes text that no rule wants to standard output.
void echo(const char* text, std::size_t length);
/// Writes what a length header said to standard output.
void echoLength(const char* header, int length);
/// Makes visible what has been echoed since the last call.
void showEchoes();
/// Empties the list, as a command's name does.
void clearList();
