#include "Report.h"

#include <array>
#include <cmath>
#include <cstdio>
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

std::string checksumText(std::uint32_t checksum) {
    std::array<char, sizeof "0xFFFFFFFF"> text = {};
    std::snprintf(text.data(), text.size(), "0x%08X", checksum);
    return text.data();
}

class TextTransferReport : public TransferReport {
public:
    void info(const std::string& message) override {
        std::cerr << "Info \"" << message << "\"" << std::endl;
    }

    void note(const std::string& note) override { std::cerr << "station: " << note << std::endl; }

    void done(const Figures& figures, double seconds) override {
        std::array<char, 64> time = {};
        std::snprintf(time.data(), time.size(), "%.3f", seconds);
        std::cout << figures.done << " bytes in " << time.data() << " s, " << figures.retries
                  << " retries";
        if (figures.checksum)
            std::cout << ", checksum " << checksumText(*figures.checksum);
        std::cout << '\n';
    }

    void failed(const std::string& message, const Figures&, double) override { note(message); }
};

class JsonTransferReport : public TransferReport {
public:
    explicit JsonTransferReport(const Order& order) {
        m_object = {{"name", order.name},
                    {"file", order.file},
                    {"bytes", 0},
                    {"seconds", nullptr},
                    {"retries", 0},
                    {"checksum", nullptr},
                    {"info", nlohmann::ordered_json::array()}};
    }

    void info(const std::string& message) override { m_object["info"].push_back(message); }
    void note(const std::string& note) override { m_object["info"].push_back("station: " + note); }

    void done(const Figures& figures, double seconds) override { print(figures, seconds); }

    void failed(const std::string& message, const Figures& figures, double seconds) override {
        m_object["error"] = message;
        print(figures, seconds);
    }

private:
    void print(const Figures& figures, double seconds) {
        m_object["bytes"] = figures.done;
        m_object["seconds"] = std::round(seconds * 1000) / 1000;
        m_object["retries"] = figures.retries;
        if (figures.checksum)
            m_object["checksum"] = checksumText(*figures.checksum);
        std::cout << m_object.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    }

    nlohmann::ordered_json m_object;
};

} // namespace

std::unique_ptr<TransferReport> makeTextTransferReport() {
    return std::make_unique<TextTransferReport>();
}

std::unique_ptr<TransferReport> makeJsonTransferReport(const Order& order) {
    return std::make_unique<JsonTransferReport>(order);
}

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
