#pragma once

#include <cstdint>
#include <string_view>

#include "base/Journal.h"
#include "base/RunState.h"
#include "radio/channels/ChannelEntry.h"
#include "recorder/MainWindow.h"
#include "recorder/RecordingState.h"

namespace kestrune::recorder {

/// Shows what the radio reports in the main window's labels, title and tray tip.
class Display final {
 public:
  Display(MainWindow& window, const base::RunState& run, base::Journal& journal);

  /// A reply for the tuned channel.
  void ShowChannel(std::int16_t tuned, const radio::ChannelEntry& entry);
  /// Another channel has been chosen: what the table knows of it, at once.
  void ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry);
  void ShowBareTitle();
  /// The song that a new capture begins with.
  void ShowSong(const radio::ChannelEntry& entry);
  /// Sets the channel's labels if they differ from what is shown.
  void RefreshChannel(std::int16_t number, const radio::ChannelEntry& entry);
  void RefreshCounters(const RecordingState& state);

  /// Three percentages, as the radio's signal reply brings them. The first reply is logged.
  void pcrSignalReceived(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial);

 private:
  void ShowTexts(std::int16_t number, const radio::ChannelEntry& entry);

  MainWindow& window_;
  const base::RunState& run_;
  base::Journal& journal_;
  bool signalLogged_ = false;
};

}  // namespace kestrune::recorder
