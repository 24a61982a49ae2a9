#pragma once

#include "config/settings/Settings.h"
#include "recorder/MainWindow.h"
#include "schedule/entries/ScheduleState.h"

namespace kestrune::recorder {

/// The four mode switches. Each answers from the running schedule entry if there is one, else from the user's
/// own choice.
class Modes {
 public:
  Modes(const schedule::ScheduleState& schedule, const config::Settings& settings, const MainWindow& window)
      : schedule_(schedule), settings_(settings), window_(window) {}

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
    return Scheduled() ? schedule_.SchedSievanceGrab : window_.chkSievanceGrab;
  }
  /// The Kill lists apply.
  [[nodiscard]] bool CheckKill() const {
    return Scheduled() ? schedule_.SchedSievanceKill : window_.chkSievanceKill;
  }

 private:
  [[nodiscard]] bool Scheduled() const { return schedule_.ActiveSchedule != 0; }

  const schedule::ScheduleState& schedule_;
  const config::Settings& settings_;
  const MainWindow& window_;
};

}  // namespace kestrune::recorder
