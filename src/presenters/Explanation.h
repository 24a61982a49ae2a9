#pragma once

#include <string>

#include "recorder/State.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::presenters {

/// One short line for the user that says what becomes of the song that plays, and why, or what begins elsewhere. It
/// follows from the state alone and decides nothing.
[[nodiscard]] std::string ExplainRecording(const recorder::State& state,
                                           const schedule::Restrictions& restrictions);

}  // namespace kestrune::presenters
