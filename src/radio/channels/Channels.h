#pragma once

#include <cstdint>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/RunState.h"
#include "platform/Files.h"
#include "radio/channels/ChannelEvents.h"
#include "radio/channels/ChannelGrid.h"
#include "radio/channels/ChannelListFile.h"
#include "radio/channels/ChannelTable.h"
#include "radio/channels/RadioState.h"
#include "radio/line/ChannelInfo.h"
#include "radio/line/RadioLink.h"

namespace kestrune::radio {

/// Keeps the table of the radio's channels: filled from the saved list, compared with a walk through the
/// radio's own list, and then kept up to date by one small request after another, every second one for the tuned
/// channel.
class Channels {
 public:
  static constexpr std::string_view kReloadTitle = "Reload Fresh Listing";
  static constexpr std::string_view kReloadText =
      "Channel listing will be reloaded next time Kestrune is started.";

  /// What the channels work on. All must outlive the object.
  struct Parts {
    RadioLink& Link;
    platform::Files& Files;
    base::EventLoop& Loop;
    base::Journal& Journal;
  };

  /// All must outlive the object. The owner passes the link's channel info replies on to
  /// pcrChannelInfoReceived.
  Channels(RadioState& state, base::RunState& run, const Parts& parts, ChannelEvents& events);

  /// Sets where the saved list is. Call it before LoadChannels and SaveChannels.
  void SetListPlace(std::string_view userDataFolder, std::string_view multiUnit) {
    listFile_.SetPlace(userDataFolder, multiUnit);
  }
  /// Sets the empty grid up, without input until the radio's first channel has come.
  void SetUpGrid();
  /// Fills table and grid from the saved list; a missing file leaves them as they are.
  void LoadChannels();
  /// Writes the list, rising by number; deletes it if PoorChannelList is set. Events run.
  void SaveChannels();
  /// The same at the end of a run. A run whose walk has not ended knows only a part of the list, if any, and leaves
  /// the file as it is, unless the user wants it gone.
  void SaveAtExit();

  /// Ends FormLoading and asks the radio for its first channel. Call it once, after LoadChannels.
  void StartWalk();
  /// Goes through the radio's list once more, in place of the polling of the other channels: songs are cut meanwhile, the
  /// tuned channel is asked every second time as ever, and channels that are new come into the table and the list
  /// file. Does nothing while the first walk runs.
  void RepeatWalk();
  /// Asks for the tuned channel three times of four instead of every second time, so that a change of its text is known
  /// sooner and the others are known later.
  void FollowTunedClosely(bool closely) { closely_ = closely; }
  /// One step of the walk or of the polling; does nothing while a reply is awaited, for 2 seconds at most.
  void RequestChannelInfo();
  /// Handles a reply. Events run inside, with InfoBusy set.
  void pcrChannelInfoReceived(const ChannelInfo& info);

  [[nodiscard]] std::int16_t ChannelNumber() const { return state_.ChannelNumber; }
  /// Tunes the radio, which takes up to 1.5 s with events running; nothing at all for the tuned channel.
  void SetChannelNumber(std::int16_t number);

  /// Has the list built afresh at the next start. The caller shows kReloadText under kReloadTitle.
  void mnuReload() { state_.PoorChannelList = true; }

  /// Writes artist and song of the last reply, for whatever channel it was, into that channel's entry and
  /// grid row, and its station into an empty station cell.
  void CopyRadioText();

  /// The entry of the tuned channel, null if the table does not have it. Valid until the table changes.
  [[nodiscard]] const ChannelEntry* TunedRow() const;
  /// The same, with the empty entry for a channel that the table does not have.
  [[nodiscard]] const ChannelEntry& TunedEntry() const {
    const ChannelEntry* row = TunedRow();
    return row != nullptr ? *row : table_.At(0);
  }
  [[nodiscard]] const ChannelTable& Table() const { return table_; }
  [[nodiscard]] const ChannelGrid& Grid() const { return grid_; }
  [[nodiscard]] ChannelGrid& Grid() { return grid_; }

 private:
  void HandleReply(const ChannelInfo& info);
  [[nodiscard]] bool WalkOn(std::int16_t channel);
  void CountStep(std::int16_t channel);
  void FinishWalk();
  void WalkAgainOn(std::int16_t channel);
  void RemoveStaleChannels();
  void AddChannel(const ChannelInfo& info);
  void AddToGrid(const ChannelEntry& entry);
  [[nodiscard]] bool UpdateEntry(const ChannelInfo& info);
  [[nodiscard]] int ShowInGrid(std::int16_t channel);
  /// Whether the next request is for the tuned channel.
  [[nodiscard]] bool TunedIsNext() const {
    return state_.PollTunedNext || (closely_ && tunedInARow_ < kTunedInARow);
  }
  void Trace(std::string_view what, std::int16_t number);

  static constexpr int kTunedInARow = 3;

  RadioState& state_;
  base::RunState& run_;
  RadioLink& link_;
  base::EventLoop& loop_;
  base::Journal& journal_;
  ChannelEvents& events_;

  ChannelTable table_;
  ChannelGrid grid_;
  ChannelListFile listFile_;
  bool closely_ = false;
  int tunedInARow_ = 0;
  bool walkEnded_ = false;
  bool walkingAgain_ = false;
  bool stepAsked_ = false;       // the last request was a step of that walk
  std::int16_t walkCursor_ = 0;  // the last channel of that walk
};

}  // namespace kestrune::radio
