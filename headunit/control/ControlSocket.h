#pragma once

#include <string>
#include <string_view>

#include "wire/Descriptor.h"

namespace headunit {

/// The folder of the control socket in the unit's tree, and the socket's name in it.
constexpr char kControlFolder[] = "/run/headunit";
constexpr char kControlName[] = "control";

/// Over the socket goes one line of words, then back one of these lines and the text of the answer, up
/// to the end of the stream.
constexpr std::string_view kControlDone = "ok\n";
constexpr std::string_view kControlRefused = "refused\n";

/// A listening socket at `path`, non-blocking, in the place of one that nobody listens on any more. Its
/// folder, which has to exist, stays locked as long as `folder` is open. Throws UnitError when another
/// headunit holds the folder or the socket cannot be made.
struct ControlSocket {
    explicit ControlSocket(const std::string& path);

    System::Descriptor folder;
    System::Descriptor listener;
};

/// A connection to the control socket in `folder`, blocking; nothing when nobody listens there.
System::Descriptor connectToControl(const std::string& folder);

} // namespace headunit
