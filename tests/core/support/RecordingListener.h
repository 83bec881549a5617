#pragma once

#include <string>
#include <vector>

#include "core/AbstractListener.h"

using Bytes = std::vector<unsigned char>;
using Tokens = std::vector<std::vector<char>>;

/// A front end that keeps what commands send while they run. One thread at a time.
class RecordingListener : public AbstractListener {
public:
    void threadLoop(System::Thread*) override {}
    void asyncSend(std::string& text) override { lines.push_back(text); }
    void asyncSend(Bytes& frame) override { frames.push_back(frame); }
    int getDeviceListNumber() override { return 0; }

    std::vector<std::string> lines;
    std::vector<Bytes> frames;
};

/// The debug frame that carries `text`, which must not be longer than 253 characters.
Bytes debugFrame(const std::string& text);

/// A token as the lexer leaves it: the text with its terminating zero.
std::vector<char> token(const std::string& text);
Tokens tokens(const std::vector<std::string>& texts);
