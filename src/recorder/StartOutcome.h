#pragma once

namespace kestrune::recorder {

/// How the load sequence ended.
enum class StartOutcome {
  Running,    ///< the update cycle works and the channel load has begun
  Failed,     ///< no sound input or no radio: the user has been told, and the close is under way
  Closed,     ///< a close came while it ran
  NotAgreed,  ///< the agreement was refused: the program ends at once
};

}  // namespace kestrune::recorder
