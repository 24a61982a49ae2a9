#pragma once

#include <cstdint>

#include "base/Journal.h"
#include "radio/channels/ChannelEntry.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Announces what the radio reports, at the moments at which the labels, the title and the tray tip change.
class Announcer final {
 public:
  Announcer(State& state, base::Journal& journal) : state_(state), journal_(journal) {}

  /// A reply for the tuned channel.
  void ShowChannel(std::int16_t tuned, const radio::ChannelEntry& entry);
  /// Another channel has been chosen: what the table knows of it, at once.
  void ShowTunedChannel(std::int16_t number, const radio::ChannelEntry& entry);
  void ShowBareTitle();
  /// The song that a new capture begins with.
  void ShowSong(const radio::ChannelEntry& entry);
  /// The tuned channel's number, station and genre.
  void RefreshChannel(std::int16_t number, const radio::ChannelEntry& entry);
  /// Sets the tray tip to the phase of this moment and the radio's current song.
  void ShowTrayTip();

  /// Three percentages, as the radio's signal reply brings them. The first reply is logged.
  void pcrSignalReceived(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial);

 private:
  State& state_;
  base::Journal& journal_;
  bool signalLogged_ = false;
};

}  // namespace kestrune::recorder
