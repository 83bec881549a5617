#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "commands/GCmd.h"
#include "support/FrontEnd.h"
#include "support/PackedPicture.h"
#include "support/UnitFixture.h"

using Calls = std::vector<std::string>;

/// A unit of the variant that has all outputs, with the test pictures and with stand-ins for its two
/// tools, which note what they were called with. What the command has done once stays done for the
/// whole process, so most cases need a fresh one.
class GraphicsUnit : public UnitFixture {
protected:
    GraphicsUnit();

    static GCmd& graphics() { return *GCmd::getInstance(); }

    /// What the unit's image version says; the command looks at it once.
    static void setImageVersion(const std::string& text);

    /// From now on these calls, and no others, end their shell by a signal.
    static void failAt(const Calls& calls);
    /// From now on this call does not come back by itself.
    static void hangAt(const std::string& call);

    /// The tools' calls since the last time: their names and arguments, with a bar between them.
    static Calls calls();
    /// What the last call found in its environment: library path, then configuration folder.
    static std::string environment();

    static std::string packedPath(unsigned index);
    static std::string unpackedPath(unsigned index);

    /// Shows a picture at the second output, and forgets the calls.
    static void startViewer() {
        expectSuccess(graphics().displayTestImage(2, 0));
        calls();
    }
    /// That a picture is shown by these calls.
    static void expectShown(unsigned char output, unsigned char index, const Calls& made) {
        expectSuccess(graphics().displayTestImage(output, index));
        EXPECT_EQ(calls(), made);
    }

    /// That a tool has failed because of `failAt`.
    static void expectToolFailure(const ProcessResponse& response);

    FrontEnd m_frontEnd;
};

/// One behind the other.
Calls joined(Calls first, const Calls& second);
/// What selects a picture and shows it.
Calls showing(unsigned index, unsigned display);
