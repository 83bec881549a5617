#pragma once

#include <string>
#include <utility>
#include <vector>

#include "core/Handler.h"
#include "support/RecordingListener.h"

using Tokens = std::vector<std::vector<char>>;

/// Sends requests the way a front end does, through the Handler and its dispatcher, and keeps what
/// arrives before the answer. The commands must have registered themselves.
class FrontEnd : public RecordingListener {
public:
    FrontEnd() {
        if (!handler().isValid())
            handler().start();
    }

    /// The answer frame. Forgets what came with the request before.
    Bytes send(Bytes request) {
        frames.clear();
        return handler().handleCommand(&request, this);
    }

    /// The answer line. Forgets what came with the request before.
    std::string send(Tokens request) {
        lines.clear();
        return handler().handleCommand(std::move(request), this);
    }

    std::string sendWords(const std::vector<std::string>& words) { return send(tokens(words)); }

private:
    static Handler& handler() { return *Handler::getInstance(); }
};

/// The line that goes ahead of an error's answer.
inline std::string infoLine(const std::string& text) {
    return "Info \"" + text + "\"";
}
