#pragma once

/// What several commands say in the same words.
namespace SharedTexts {

constexpr char kInvalidLength[] = "Invalid Command Length";
constexpr char kNoSubCommand[] = "Expected a subcommand!";
constexpr char kUnknownSubCommand[] = "unknown subcommand '%s'";

} // namespace SharedTexts
