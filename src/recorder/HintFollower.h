#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "radio/channels/Channels.h"
#include "recorder/Door.h"
#include "recorder/Hint.h"
#include "recorder/State.h"
#include "schedule/entries/DueSearch.h"

namespace kestrune::recorder {

/// Lets an idle program follow a hint: it tunes to that channel, keeps that song alone, and goes back to the channel from
/// which it came.
///
/// 1. Only with `Hints` and `FollowHints`; while nothing is recorded, armed or to be kept, songs are split, nothing has
///    failed, the radio is not muted, and no event runs or is due within ten minutes; never within five minutes after
///    something that a user did. Only to a fresh hint, and to each once.
/// 2. It goes back when the song's file has met its fate, when the song is over before it could be begun, and after half
///    an hour at the latest. Until then another hint does not matter.
/// 3. Whatever a user does meanwhile, an event, and a change of channel by another hand end it: the program stays where
///    it then is. The mark on the capture stays.
/// 4. It does nothing within another step: each of its own is asked for at the door.
class HintFollower {
 public:
  static constexpr std::chrono::minutes kAfterUser{5};
  static constexpr std::chrono::minutes kBeforeEvent{10};
  static constexpr std::chrono::minutes kLongest{30};

  /// How a song is kept: marks the capture in hand, and tells whether any capture is still marked.
  struct Keeping {
    std::function<void()> Mark;
    std::function<bool()> Marked;
  };
  struct Parts {
    radio::Channels& Channels;
    recorder::Door& Door;
    base::EventLoop& Loop;
    base::Journal& Journal;
  };

  /// All must outlive the object.
  HintFollower(State& state, const Parts& parts, Keeping keeping);

  void Start() { tmrLook_->SetEnabled(true); }
  void Stop() { tmrLook_->SetEnabled(false); }

  /// A user has asked to tune, record, stop, keep or mute, wherever, and whether it was refused or not.
  void UserActed();

 private:
  enum class Step : std::uint8_t { Rest, AwaitSong, AwaitEnd };

  void Look();
  void TakeStep();
  [[nodiscard]] const Hint* Wanted() const;
  [[nodiscard]] bool Idle() const;
  void Go(const Hint& hint);
  [[nodiscard]] bool Interrupted() const;
  [[nodiscard]] bool InHand() const;
  [[nodiscard]] bool Over() const;
  void GoBack();
  void End();

  State& state_;
  Parts parts_;
  Keeping keeping_;
  schedule::DueSearch due_;
  std::unique_ptr<base::Timer> tmrLook_;
  std::optional<std::chrono::milliseconds> lastAct_;  // of a user
  bool asked_ = false;                                // at the door
  std::int64_t last_ = 0;                             // the hint that was followed last
  Step step_ = Step::Rest;
  Hint hint_;
  std::chrono::milliseconds since_{0};
  bool acted_ = false;  // a user, since the program went there
};

}  // namespace kestrune::recorder
