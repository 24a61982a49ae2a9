#pragma once

#include <cstdint>

#include "radio/channels/ChannelEntry.h"

namespace kestrune::radio {

/// What the rest of the program learns from the channels. All calls come on the main thread; entries are valid for
/// the call.
class ChannelEvents {
 public:
  virtual ~ChannelEvents() = default;

  /// A reply for the tuned channel: show the entry in the labels, "Kestrune: " and the artist as the title,
  /// and artist and song in the tray tip. CurrentArtist and CurrentSong are set.
  virtual void ShowChannel(const ChannelEntry& entry) = 0;

  // A change of channel makes these three calls, in this order.

  /// Show the channel's number and its entry, which is empty if the table does not have it.
  virtual void ShowTunedChannel(std::int16_t number, const ChannelEntry& entry) = 0;
  /// The title and the tray tip say "Kestrune" alone, until a reply for the new channel comes.
  virtual void ShowBareTitle() = 0;
  /// The radio has been asked to tune: SongBoundarySeen is off now, and SkipSongDelay on.
  virtual void ChannelTuned() = 0;

  /// The walk has ended and the list is saved: songs may be cut, a recording that waits for the channels
  /// begins, and the list can be reloaded. The reply that ended the walk is still being handled.
  virtual void WalkFinished() = 0;
};

}  // namespace kestrune::radio
