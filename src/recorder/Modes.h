#pragma once

#include <cstdint>

#include "recorder/State.h"

namespace kestrune::recorder {

/// The four mode switches. Each answers from the running schedule entry if there is one, else from the user's
/// own choice.
class Modes {
 public:
  /// The state must outlive the object.
  explicit Modes(const State& state) : schedule_(state.Schedule), settings_(state.Settings) {}

  /// Whole songs only.
  [[nodiscard]] bool CheckIntegrel() const {
    return Scheduled() ? schedule_.SchedIntegrel : settings_.Integrel;
  }
  /// One file a song.
  [[nodiscard]] bool CheckCleftune() const {
    return Scheduled() ? schedule_.SchedCleftune : settings_.Cleftune;
  }
  /// The Grab lists apply.
  [[nodiscard]] bool CheckGrab() const {
    return Scheduled() ? schedule_.SchedSievanceGrab : settings_.SievanceGrab != 0;
  }
  /// The Kill lists apply.
  [[nodiscard]] bool CheckKill() const {
    return Scheduled() ? schedule_.SchedSievanceKill : settings_.SievanceKill != 0;
  }
  /// All four, as they are now.
  [[nodiscard]] ModeSwitches InForce() const {
    return {
        .Integrel = CheckIntegrel(), .Cleftune = CheckCleftune(), .Grab = CheckGrab(), .Kill = CheckKill()};
  }
  /// The schedule entry that runs, 1 to 10; 0 for none.
  [[nodiscard]] std::int16_t Event() const { return schedule_.ActiveSchedule; }

 private:
  [[nodiscard]] bool Scheduled() const { return schedule_.ActiveSchedule != 0; }

  const schedule::ScheduleState& schedule_;
  const config::Settings& settings_;
};

}  // namespace kestrune::recorder
