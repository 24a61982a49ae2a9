#pragma once

#include <cstdint>

#include "recorder/State.h"

namespace kestrune::presenters {

/// The hint that the main window's line and the tip of the tray show: the newest. While something is recorded or waited for, only a
/// fresh one, since the line has other things to say; none while something has failed, the channels load or a hint is being followed. Null if there
/// is none; valid until the state changes.
[[nodiscard]] const recorder::Hint* ShownHint(const recorder::State& state);

/// The channel that "Tune" leads to; 0 while no hint is shown or the channel must not be changed.
[[nodiscard]] std::int16_t HintChannel(const recorder::State& state);

}  // namespace kestrune::presenters
