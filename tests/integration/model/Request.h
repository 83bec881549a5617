#pragma once

#include <string>
#include <vector>

/// One word of a line, in the notation in which it travels.
struct Word {
    enum class Notation { Text, Hex, Base64 };

    static Word text(std::string text) { return {Notation::Text, std::move(text)}; }
    static Word hex(std::string bytes) { return {Notation::Hex, std::move(bytes)}; }
    static Word base64(std::string bytes) { return {Notation::Base64, std::move(bytes)}; }

    /// What the command gets: a text has a zero byte behind it, base64 zeros up to a multiple of three.
    std::string value() const;

    /// As it stands in a line.
    std::string written() const;

    Notation notation;
    std::string bytes;
};

/// One request of a sequence, on one of the links: a line or a frame.
struct Request {
    static Request ofLine(std::vector<Word> words) { return {0, 0, std::move(words), {}}; }
    static Request ofFrame(std::string frame) { return {0, 0, {}, std::move(frame)}; }

    bool isFrame() const { return words.empty(); }

    /// The bytes that the link carries.
    std::string sent() const;

    /// The frame with its length byte, so that a position in it is the one in the protocol.
    std::string wholeFrame() const;

    /// Requests of one phase travel on their links at once, those of one link one after the other.
    int phase;
    int link;
    std::vector<Word> words; ///< of a line, the command's name first
    std::string frame;       ///< behind its length byte; counts when there are no words
};

using Sequence = std::vector<Request>;

/// A command line of `station` that sends just this to the target, to be pasted into a shell.
std::string pasted(const Request& request, const std::string& target);
