#include "EndCode.h"

#include "ExitCode.h"
#include "Report.h"
#include "client/Failure.h"
#include "session/Interruption.h"
#include "session/Refused.h"
#include "transfer/Watch.h"

namespace station {

int endCode(const std::exception& error) {
    constexpr int kSignalled = 128;
    if (const auto* interrupted = dynamic_cast<const Interrupted*>(&error))
        return kSignalled + interrupted->signal();
    if (const auto* failure = dynamic_cast<const Failure*>(&error))
        return static_cast<int>(exitCode(*failure));
    if (dynamic_cast<const Refused*>(&error) != nullptr)
        return static_cast<int>(ExitCode::Refused);
    if (dynamic_cast<const Unverified*>(&error) != nullptr)
        return static_cast<int>(ExitCode::MalformedAnswer);
    return static_cast<int>(ExitCode::Unexpected);
}

} // namespace station
