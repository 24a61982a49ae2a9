#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "base/EventLoop.h"
#include "recorder/State.h"

namespace kestrune::presenters {

/// What a screen reader says by itself: the song when another one plays, with the channel if that is another one too; the
/// status when it is another one; and what has failed. A change in several steps is said once, when it has stood for
/// a second.
class SpokenChanges {
 public:
  static constexpr std::chrono::seconds kSettle{1};

  /// The loop must outlive the object.
  explicit SpokenChanges(const base::EventLoop& loop) : loop_(loop) {}

  /// What is to be said now, for example "Low Water by Abigail Wren. Recording."; empty if nothing. To be called some times
  /// a second. What stands when the start is over is not said, since a reader reads a window that opens.
  [[nodiscard]] std::string Next(const recorder::State& state);

 private:
  struct Said {
    std::string Channel;
    std::string Song;
    recorder::Problem Worst = recorder::Problem::None;
    recorder::Phase Phase = recorder::Phase::Idle;

    bool operator==(const Said&) const = default;
  };

  [[nodiscard]] static Said Now(const recorder::State& state);

  const base::EventLoop& loop_;
  std::optional<Said> said_;
  Said seen_;
  std::chrono::milliseconds seenSince_{0};  // on the steady clock
};

}  // namespace kestrune::presenters
