#pragma once

#include <cstdint>
#include <string>

#include "radio/channels/ChannelEntry.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// All that is to be known of the run at one moment, for everything that shows it. It refers to the unit's own
/// records: do not keep it beyond the call in which it was taken.
struct Snapshot {
  const recorder::State& State;
  const std::string& MultiUnit;
  /// The tuned channel as the table has it; empty if it does not have it.
  const radio::ChannelEntry& Tuned;
  std::int16_t ChannelCount = 0;
  std::string FormatDescription;
  /// Name of the device that the settings ask for, empty if it was not usable at the start.
  const std::string& InputDeviceName;
  std::int64_t FramesCaptured = 0;  ///< since the start
  std::int64_t FramesLost = 0;
};

}  // namespace kestrune::recorder
