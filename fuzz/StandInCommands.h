#pragma once

#include <string_view>

/// The commands that a unit under the fuzzer has, by their ids. Each does to its request what real ones
/// do to theirs, and nothing to the machine.
namespace StandIn {

constexpr char kSuccess = 'Q';   ///< answers success
constexpr char kStatus = 's';    ///< the same; in the place of the real one
constexpr char kShell = 'c';     ///< the same; in the place of the real one
constexpr char kPayload = 'P';   ///< answers the whole request
constexpr char kFailure = 'F';   ///< answers kFailureCode, with what follows D1 as the text
constexpr char kSilence = 0x06;  ///< answers nothing
constexpr char kTalk = 'A';      ///< sends what follows D1 as a debug frame, and answers success
constexpr char kOwnFrame = 'L';  ///< answers what follows D1 as it is; success when that is nothing
constexpr char kException = 'X'; ///< throws kExceptionText

constexpr char kIds[] = {kSuccess, kStatus, kShell,    kPayload,  kFailure,
                         kSilence, kTalk,   kOwnFrame, kException};
constexpr std::string_view kAll(kIds, sizeof kIds);

constexpr unsigned kFailureCode = 0x1234;
constexpr char kExceptionText[] = "something went wrong";

} // namespace StandIn
