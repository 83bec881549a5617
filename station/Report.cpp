#include "Report.h"

#include <cmath>
#include <iostream>
#include <nlohmann/json.hpp>

#include "client/Hex.h"

namespace station {

namespace {

class TextReport : public Report {
public:
    void info(const std::string& message) override {
        std::cerr << "Info \"" << message << "\"" << std::endl;
    }

    void frame(const std::string& hexText) override { std::cout << hexText << std::endl; }

    void answered(const Answer& answer, double) override {
        if (answer.isRefusal())
            std::cerr << "station: refused: " << answer.text << '\n';
        else if (!answer.text.empty())
            std::cout << answer.text << (answer.text.back() == '\n' ? "" : "\n");
    }

    void failed(const Failure& failure, double) override {
        std::cerr << "station: " << failure.what() << '\n';
    }
};

class JsonReport : public Report {
public:
    explicit JsonReport(const std::string& name) {
        // All keys in their order; what stays unknown is null.
        m_object = {{"name", name},
                    {"answer", nullptr},
                    {"info", nlohmann::ordered_json::array()},
                    {"code", nullptr},
                    {"milliseconds", nullptr}};
    }

    void info(const std::string& message) override { m_object["info"].push_back(message); }

    void frame(const std::string& hexText) override {
        m_frames += (m_frames.empty() ? "" : "\n") + hexText;
        m_object["answer"] = m_frames;
    }

    void answered(const Answer& answer, double milliseconds) override {
        if (m_frames.empty())
            m_object["answer"] = answer.text;
        if (answer.payload)
            m_object["payload"] = hexDigits(*answer.payload);
        m_object["code"] = answer.code;
        print(milliseconds);
    }

    void failed(const Failure& failure, double milliseconds) override {
        m_object["error"] = failure.what();
        print(milliseconds);
    }

private:
    void print(double milliseconds) {
        m_object["milliseconds"] = std::round(milliseconds * 1000) / 1000;
        // A unit may send any byte; what is not UTF-8 is shown as U+FFFD.
        std::cout << m_object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    }

    nlohmann::ordered_json m_object;
    std::string m_frames;
};

} // namespace

std::unique_ptr<Report> makeTextReport() {
    return std::make_unique<TextReport>();
}

std::unique_ptr<Report> makeJsonReport(const std::string& name) {
    return std::make_unique<JsonReport>(name);
}

ExitCode exitCode(const Answer& answer) {
    return answer.isRefusal() ? ExitCode::Refused : ExitCode::Success;
}

ExitCode exitCode(const Failure& failure) {
    switch (failure.kind()) {
        case Failure::Kind::InvalidRequest:
            return ExitCode::Usage;
        case Failure::Kind::CannotConnect:
            return ExitCode::CannotConnect;
        case Failure::Kind::TimedOut:
            return ExitCode::TimedOut;
        case Failure::Kind::ConnectionLost:
        case Failure::Kind::MalformedAnswer:
            return ExitCode::MalformedAnswer;
    }
    return ExitCode::Unexpected;
}

} // namespace station
