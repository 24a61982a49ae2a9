#pragma once

#include <string_view>

namespace kestrune::presenters {

/// What stands beside the channel while something is recorded, when a click on a channel, a preset or the mute is refused.
inline constexpr std::string_view kChannelLocked = "Locked while recording";
/// The same in a whole sentence, for a tip.
inline constexpr std::string_view kChannelLockedWhy =
    "The channel, the presets and the mute stay as they are until the recording stops.";

}  // namespace kestrune::presenters
