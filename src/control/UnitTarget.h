#pragma once

#include <functional>
#include <optional>
#include <string>

#include "control/ControlTarget.h"
#include "control/ScheduleCommands.h"
#include "recorder/Kestrune.h"

namespace kestrune::control {

/// The control socket's hands on a running unit. It goes through the same doors as a person at the windows,
/// and is refused where a person would be.
class UnitTarget final : public ControlTarget {
 public:
  /// The unit must outlive the target.
  explicit UnitTarget(recorder::Kestrune& unit) : unit_(unit) {}

  [[nodiscard]] StatusReport Status() override;
  [[nodiscard]] std::vector<ChannelReport> Channels() override;
  [[nodiscard]] CommandResult Record() override;
  [[nodiscard]] CommandResult Stop() override;
  [[nodiscard]] CommandResult Tune(int channelNumber) override;
  [[nodiscard]] CommandResult Mute(bool muted) override;
  [[nodiscard]] std::vector<std::string> LogLines(std::size_t atMost) override;
  [[nodiscard]] SettingResult Get(std::string_view key) override;
  [[nodiscard]] CommandResult Set(std::string_view key, std::string_view value) override;
  [[nodiscard]] std::vector<ScheduleReport> Schedule() override;
  [[nodiscard]] CommandResult SetSchedule(const ScheduleChange& change) override;
  [[nodiscard]] CommandResult EnableSchedule(int number, bool enabled) override;
  [[nodiscard]] CommandResult ClearSchedule(int number) override;
  [[nodiscard]] ListsReport Lists() override;
  [[nodiscard]] CommandResult AddToList(schedule::RestrictList list, std::string_view text) override;
  [[nodiscard]] CommandResult RemoveFromList(schedule::RestrictList list, std::string_view text) override;
  [[nodiscard]] UpdateResult Update() override;
  [[nodiscard]] CommandResult Quit() override;

 private:
  [[nodiscard]] schedule::SchedulerSettings EntrySettings() const;
  /// Runs a command on a stored entry, unless an open editor has changes. The schedule and the open editors read
  /// the entries again afterwards.
  [[nodiscard]] CommandResult ChangeEntry(
      const std::function<std::optional<std::string>(const StoredSchedule&)>& change);

  recorder::Kestrune& unit_;
};

}  // namespace kestrune::control
