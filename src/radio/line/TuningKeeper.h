#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "base/EventLoop.h"
#include "radio/line/LinkState.h"
#include "radio/line/RadioSession.h"
#include "radio/line/RemedyPace.h"

namespace kestrune::radio {

/// Keeps a radio that answers on the channel and the mute it is ordered to. It repeats what was refused or not
/// answered, at the pace of RemedyPace, and waits for nothing.
class TuningKeeper {
 public:
  /// How often Keep is to be called.
  static constexpr std::chrono::milliseconds kBeat{250};

  /// Both must outlive this object.
  TuningKeeper(RadioSession& session, base::EventLoop& loop) : session_(session), loop_(loop) {}

  /// Forgets what it owed the radio; with `muteOwed` it owes it the mute.
  void Begin(bool muteOwed);
  /// The radio may have lost its power, and be on any channel and sound: both are sent to it once more, unless its user
  /// took it to another channel and may leave it there.
  void MayHaveLostPower(const LinkOrders& orders);
  /// Sends what is owed and due.
  void Keep(const LinkOrders& orders);

  /// As LinkStatus::Doubt. A channel comes into doubt when it has been repeated three times.
  [[nodiscard]] const std::string& Doubt() const { return doubt_; }

 private:
  enum class Channel { Right, Awaited, Wrong };

  [[nodiscard]] Channel Judge(const LinkOrders& orders);
  void RepeatSelect(std::int16_t channel);
  void RepeatMute(bool muted);

  RadioSession& session_;
  base::EventLoop& loop_;

  RemedyPace pace_;
  bool wrong_ = false;  // the pace of the channel runs
  std::int16_t wanted_ = 0;
  int repeats_ = 0;
  std::uint32_t select_ = 0;  // the select that is awaited
  int awaitedFor_ = 0;        // beats
  std::string doubt_;

  RemedyPace mutePace_;
  bool muteOwed_ = false;
  bool muteSent_ = false;
  std::uint32_t muteReplies_ = 0;
};

}  // namespace kestrune::radio
