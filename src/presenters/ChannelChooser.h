#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/RunState.h"
#include "platform/Sounds.h"
#include "radio/channels/ChannelGrid.h"
#include "radio/channels/Channels.h"

namespace kestrune::presenters {

/// What the user does in the grid of the channels window: choosing a channel by click or by key, which tunes
/// it a moment after the last move, sorting by a title, and offering a text for the Grab and Kill lists. While
/// recording runs the selection stays on the tuned channel, and a sound says so.
///
/// Rows count from 1; a row that does not exist is tolerated and leaves things as they are.
class ChannelChooser {
 public:
  /// All must outlive the object. `tmrUpdate` is off while the update cycle runs; `getRecordingStatus`
  /// returns whether the channel must not be changed.
  ChannelChooser(radio::Channels& channels, const base::RunState& run, platform::Sounds& sounds,
                 base::EventLoop& loop, const base::Timer& tmrUpdate,
                 std::function<bool()> getRecordingStatus);

  /// Takes a text for the Grab or Kill list: "Artist" or "Song", and the cell's text without the blanks
  /// around it.
  std::function<void(std::string_view word, std::string_view text)> OfferForList = [](auto, auto) {};
  /// Asks for a channel; `refused` is called if recording keeps the one that is tuned. Tunes at once unless it is
  /// set.
  std::function<void(std::int16_t channel, std::function<void()> refused)> Tune =
      [this](std::int16_t channel, const std::function<void()>& /*refused*/) {
        channels_.SetChannelNumber(channel);
      };
  /// What else is to be said of a channel; may be empty.
  std::function<std::string(std::int16_t channel)> Tip = [](auto) { return std::string(); };
  /// Clears `chkChannelListing` of the main window, which hides this one.
  std::function<void()> ClearChannelListing = [] {};

  [[nodiscard]] const radio::ChannelGrid& Grid() const { return channels_.Grid(); }

  /// Whether recording leaves the choice of the channel to the user.
  [[nodiscard]] bool MayTune() const { return !getRecordingStatus_(); }

  /// A click on the title row: sorts by the column, the other way round on each further click.
  void ClickTitle(int column);
  void ClickRow(int row);
  /// The arrow keys, or the grid's own answer to a press of the mouse, went to the row.
  void MoveTo(int row);
  /// Row 0 is the title row.
  void DoubleClick(int row, int column);

  /// A close of the window. True if it goes, and its place is to be saved; else it has been hidden.
  [[nodiscard]] bool Close();
  /// The program ends: no channel change any more, and the window really closes.
  void Quit();
  [[nodiscard]] bool QuitFlag() const { return quitFlag_; }

  /// The channel that is tuned when the timer fires.
  [[nodiscard]] std::int16_t PendingChannel() const { return pendingChannel_; }
  [[nodiscard]] const base::Timer& tmrChannelChange() const { return *tmrChannelChange_; }

 private:
  [[nodiscard]] bool RefuseWhileRecording();
  void Refuse();
  void PutSelectionBack();
  void tmrChannelChange_Timer();

  radio::Channels& channels_;
  const base::RunState& run_;
  platform::Sounds& sounds_;
  const base::Timer& tmrUpdate_;
  std::function<bool()> getRecordingStatus_;

  bool quitFlag_ = false;
  std::int16_t pendingChannel_ = 0;
  int sortClickColumn_ = 0;
  int sortClickOrder_ = 0;  // 0 before the first click
  std::unique_ptr<base::Timer> tmrChannelChange_;
};

}  // namespace kestrune::presenters
