#pragma once

#include <string>

#include "radio/channels/RadioState.h"
#include "recorder/MainWindow.h"
#include "recorder/Modes.h"
#include "recorder/RecordingState.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::recorder {

/// One short line for the user that says what becomes of the song that plays, and why. It follows from the
/// state alone and decides nothing.
[[nodiscard]] std::string ExplainRecording(const MainWindow& window, const RecordingState& recording,
                                           const radio::RadioState& radio, const Modes& modes,
                                           const schedule::Restrictions& restrictions);

}  // namespace kestrune::recorder
