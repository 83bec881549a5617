#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "FakeSession.h"
#include "client/Failure.h"
#include "support/TestFolder.h"
#include "transfer/Job.h"

namespace station {

/// Runs transfers against the fake unit, with files in a folder of the test's own.
class TransferTest : public testing::Test {
protected:
    std::string path(const std::string& name) const { return m_folder / name; }

    std::string fileOf(const std::string& bytes) const {
        std::ofstream(path("source"), std::ios::binary) << bytes;
        return path("source");
    }

    static std::string contentOf(const std::string& file) {
        std::ostringstream content;
        content << std::ifstream(file, std::ios::binary).rdbuf();
        return content.str();
    }

    static bool exists(const std::string& file) { return std::filesystem::exists(file); }

    Order order(Order::Kind kind, const std::string& file) const {
        Order order;
        order.kind = kind;
        order.file = file;
        order.device = FakeSession::kDevice;
        return order;
    }

    /// Throws what the transfer throws.
    void run(const Order& order) {
        figures = {};
        const auto progress = makeProgress(ProgressMode::None, std::cerr, 0, {});
        Watch watch{*progress, [this](const std::string& note) { notes.push_back(note); }};
        job = makeJob(order);
        Unit unit(session, *interruption, [this](const std::string& info) { infos.push_back(info); });
        job->run(unit, watch, figures);
    }

    template <typename Exception>
    std::string failureOf(const Order& order) {
        try {
            run(order);
        } catch (const Exception& exception) {
            return exception.what();
        }
        ADD_FAILURE() << "the transfer did not fail as expected";
        return {};
    }

    std::string leftover() const { return job->leftover(figures); }

    /// From the request with this number on nothing is answered any more.
    void cutAt(std::size_t request) {
        session.before = [request](const std::string&, std::size_t number) -> std::optional<Answer> {
            if (number >= request)
                throw Failure(Failure::Kind::ConnectionLost, "cut");
            return std::nullopt;
        };
    }

    /// The signal comes while that request is carried out.
    void interruptAt(std::size_t request) {
        session.before = [this, request](const std::string&,
                                         std::size_t number) -> std::optional<Answer> {
            if (number == request)
                interruption->raise(SIGTERM);
            return std::nullopt;
        };
    }

    /// So many requests that begin like this are answered with a checksum that is not right.
    void falsify(const std::string& opening, int times) {
        session.after = [opening, times](const std::string& request, Answer& answer) mutable {
            if (request.compare(0, opening.size(), opening) == 0 && times-- > 0)
                answer.text = "cksum base64(AAAAAA==)";
        };
    }

    FakeSession session;
    std::unique_ptr<Interruption> interruption = std::make_unique<Interruption>();
    Figures figures;
    std::unique_ptr<Job> job;
    std::vector<std::string> notes;
    std::vector<std::string> infos;

private:
    TestFolder m_folder;
};

} // namespace station
