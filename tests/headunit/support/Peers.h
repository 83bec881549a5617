#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

#include "commands/UnitPeers.h"
#include "control/ControlClient.h"
#include "support/Line.h"
#include "support/TestFiles.h"
#include "unit/UnitFolder.h"

namespace headunit_test {

/// The peers of a unit at work on a folder, without a sandbox around it.
class PeersTest : public testing::Test {
protected:
    std::string node(const std::string& unitPath) const { return m_unit.hostPath(unitPath); }
    std::string stationEnd() const { return node("/run/headunit/station-line"); }
    bool exists(const std::string& unitPath) const {
        return std::filesystem::is_symlink(node(unitPath));
    }

    headunit::ControlAnswer ask(const std::string& line) const {
        const auto answer = headunit::askUnit(node("/run/headunit"), line);
        return answer.value_or(headunit::ControlAnswer{false, "nobody listens"});
    }

    /// Asks for something that is to be done.
    void tell(const std::string& line) const {
        const auto answer = ask(line);
        EXPECT_TRUE(answer.done) << line << ": " << answer.text;
    }

    TestFolder m_parent;
    headunit::UnitFolder m_unit = headunit::UnitFolder::kept(m_parent / "unit");
    std::optional<headunit::UnitPeers> m_peers{std::in_place, m_unit};
};

} // namespace headunit_test
