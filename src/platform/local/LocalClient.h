#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace kestrune::platform {

enum class AskOutcome {
  Answered,
  NobodyListens,  ///< no socket at the path, or one that a dead process left
  Foreign,        ///< another user's process listens there; nothing was sent to it
  NoAnswer,       ///< the connection broke, the time ran out, or the answer had no end
};

struct AskResult {
  AskOutcome Outcome = AskOutcome::NobodyListens;
  std::string Answer;  ///< one line without its end
};

/// Sends one line to a local socket and waits for one line back, for at most the given time in all. Blocks.
[[nodiscard]] AskResult Ask(const std::string& path, std::string_view line,
                            std::chrono::milliseconds timeout);

}  // namespace kestrune::platform
