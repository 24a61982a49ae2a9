#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "control/ControlTarget.h"
#include "control/ScheduleCommands.h"
#include "recorder/Kestrune.h"

namespace kestrune::control {

/// The control socket's side of a running unit. What it asks for goes in at the same door as what a person does at
/// the windows, and is refused where a person would be.
class UnitTarget final : public ControlTarget {
 public:
  /// The unit must outlive the target.
  explicit UnitTarget(recorder::Kestrune& unit) : unit_(unit) {}

  [[nodiscard]] StatusReport Status() override;
  [[nodiscard]] std::vector<ChannelReport> Channels() override;
  [[nodiscard]] std::vector<std::string> LogLines(std::size_t atMost) override;
  [[nodiscard]] SettingResult Get(std::string_view key) override;
  [[nodiscard]] std::vector<ScheduleReport> Schedule() override;
  [[nodiscard]] ListsReport Lists() override;
  [[nodiscard]] std::vector<ShelvedReport> Shelf() override;
  [[nodiscard]] std::vector<StationLagReport> StationLags(int channel) override;
  [[nodiscard]] HintsResult Hints() override;

  void Report(const ReportQuestion& question, ReportAnswered answered) override;
  void History(const HistoryQuestion& question, HistoryAnswered answered) override;
  void MostPlayed(const MostPlayedQuestion& question, MostPlayedAnswered answered) override;
  void Cuts(const CutsQuestion& question, CutsAnswered answered) override;

  void Record(Answered answered) override;
  void Stop(Answered answered) override;
  void Tune(int channelNumber, Answered answered) override;
  void Mute(bool muted, Answered answered) override;
  void Keep(int number, Answered answered) override;
  void KeepCurrent(Answered answered) override;
  void Set(std::string_view key, std::string_view value, Answered answered) override;
  void SetSchedule(const ScheduleChange& change, Answered answered) override;
  void EnableSchedule(int number, bool enabled, Answered answered) override;
  void ClearSchedule(int number, Answered answered) override;
  void AddToList(schedule::RestrictList list, std::string_view text, Answered answered) override;
  void RemoveFromList(schedule::RestrictList list, std::string_view text, Answered answered) override;
  void Update(std::function<void(const UpdateResult&)> answered) override;
  void Quit(Answered answered) override;

 private:
  /// Empty if the channel is not known.
  [[nodiscard]] std::string StationOf(std::int16_t channel) const;
  [[nodiscard]] schedule::SchedulerSettings EntrySettings() const;
  /// Asks for a command on a stored entry, which is refused while an open editor has changes. The schedule and the
  /// open editors read the entries again after it.
  void ChangeEntry(std::function<std::optional<std::string>(const StoredSchedule&)> change,
                   Answered answered);

  recorder::Kestrune& unit_;
};

}  // namespace kestrune::control
