#pragma once

#include <fstream>
#include <string>

#include "line/Adapter.h"
#include "support/Daemon.h"

/// A command that runs in the unit until the test opens its gate, as often as wanted.
class GatedCommand {
public:
    GatedCommand();
    ~GatedCommand();
    GatedCommand(const GatedCommand&) = delete;
    GatedCommand& operator=(const GatedCommand&) = delete;

    /// Comes back once the command's shell is there.
    void start(Adapter& adapter, const Daemon& daemon);

    /// Does not wait, even where the shell has long been killed.
    void openGate();

private:
    static constexpr char kGate[] = "/tmp/gate";

    std::string m_request;
    std::fstream m_gate;
};
