#pragma once

#include <chrono>
#include <memory>

#include "base/DateValue.h"
#include "base/EventLoop.h"
#include "base/Journal.h"
#include "recorder/Chronicle.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Notices that the machine has slept and that its clock was set: each is said once, in the log and in the record of
/// what happened, when it is over. Summer time, another time zone and a clock that is corrected little by little are
/// nothing. Does nothing while the setting Watch is off.
class ClockWatch {
 public:
  static constexpr std::chrono::milliseconds kLook{1'000};
  /// What is shorter is not worth a word: more than this within one look, for a sleep as for a step.
  static constexpr std::chrono::milliseconds kNoticeable{5'000};

  /// All must outlive the object.
  ClockWatch(const State& state, Chronicle& chronicle, base::EventLoop& loop, base::Journal& journal);

  /// Looks once a second.
  void Start();
  void Stop() { tmrLook_->SetEnabled(false); }

 private:
  /// The clocks at one moment. Steady stands still during a sleep, Boot does not, and only Universal can be set.
  struct Clocks {
    std::chrono::milliseconds Steady{0};
    std::chrono::milliseconds Boot{0};
    std::chrono::milliseconds Universal{0};
    base::DateValue Wall;
  };

  [[nodiscard]] Clocks Read() const;
  void Look();
  void SaySleep(base::DateValue from, base::DateValue to, std::chrono::seconds lasted);
  /// `to` is what the clock shows now instead of `from`.
  void SayStep(base::DateValue from, base::DateValue to, std::chrono::seconds by);

  const State& state_;
  Chronicle& chronicle_;
  base::EventLoop& loop_;
  base::Journal& journal_;
  Clocks last_;
  std::unique_ptr<base::Timer> tmrLook_;
};

}  // namespace kestrune::recorder
