#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "radio/channels/ChannelLoad.h"

namespace kestrune::radio {

/// The state of the radio and its channels that several rooms share.
struct RadioState {
  /// The identifier read at the start; may be empty.
  std::string RadioID;

  /// The tuned channel. The start sequence writes it once from the settings; from then on
  /// `Channels::SetChannelNumber` does.
  std::int16_t ChannelNumber = 0;
  /// A channel change waits for its first reply.
  bool ChannelChanged = false;
  /// What the tuned channel plays, from its last reply; UTF-8.
  std::string CurrentArtist;
  std::string CurrentSong;

  /// The walk through the radio's channels runs.
  bool ChannelsLoading = false;
  /// How far it has come; it stays as the walk has left it.
  ChannelLoad Load;
  /// Grows with each end of the list; the third one ends the walk.
  std::int16_t EnumPass = 1;
  /// During the walk the last channel received, afterwards the table slot polled last.
  std::int16_t EnumCursor = 0;
  /// The next request is for the tuned channel.
  bool PollTunedNext = false;
  /// Last request or reply, on the steady clock: a stepped wall clock must not hold up the polling. At the
  /// start it is long past.
  std::chrono::milliseconds LastInfoRequest = -std::chrono::hours(24);
  /// A channel info reply is being handled.
  bool InfoBusy = false;

  /// The saved channel list is to be deleted at the exit and not written.
  bool PoorChannelList = false;
};

}  // namespace kestrune::radio
