#include "line/GatedCommand.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "support/BinaryFrames.h"
#include "support/ProcessFigures.h"
#include "support/UnitFiles.h"
#include "support/Waiting.h"

GatedCommand::GatedCommand() : m_request(execRequest(60, std::string("read line <") + kGate)) {
    makeFifo(kGate);
    // For both directions: an end of its own for each would wait for the other.
    m_gate.open(kGate, std::ios::in | std::ios::out);
}

GatedCommand::~GatedCommand() {
    std::remove(kGate);
}

void GatedCommand::start(Adapter& adapter, const Daemon& daemon) {
    adapter.send(m_request);
    EXPECT_TRUE(eventually([&daemon] { return !childrenOf(daemon.pid()).empty(); }));
}

void GatedCommand::openGate() {
    EXPECT_TRUE(m_gate << "\n" << std::flush);
}
