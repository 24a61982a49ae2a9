#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/EventLoop.h"
#include "platform/Dialogs.h"
#include "schedule/entries/SchedulerRow.h"
#include "schedule/entries/SchedulerSettings.h"

namespace kestrune::presenters {

/// What the scheduler needs of the program.
struct SchedulerPorts {
  base::EventLoop& Loop;  ///< for the present moment
  platform::Dialogs& Dialogs;
  schedule::SchedulerSettings Settings;
  std::function<void()> ReloadSchedule;
};

/// The rules of the scheduler, the one editor of the schedule: ten rows, start plus duration and end kept in
/// step both ways, overlaps refused when it saves. It is made anew each time that the scheduler opens. Row
/// indices run from 0 to 9.
class Scheduler {
 public:
  /// Loads. The channels stand in the order in which the user is to see them.
  Scheduler(SchedulerPorts ports, std::vector<schedule::SchedulerChannel> channels);

  [[nodiscard]] const schedule::SchedulerRow& Row(int index) const { return rows_.at(Position(index)); }
  [[nodiscard]] const schedule::SchedulerRows& Rows() const { return rows_; }
  [[nodiscard]] const std::vector<schedule::SchedulerChannel>& Channels() const { return channels_; }
  /// Item of a list of channels: the number right-aligned in three characters, " - " and the station.
  [[nodiscard]] static std::string ChannelItem(const schedule::SchedulerChannel& channel);

  /// The value exchanged with the date picker.
  base::DateValue SelDate;
  /// Something has changed since the load or the last save.
  [[nodiscard]] bool SchedDirty() const { return schedDirty_; }
  /// The last save was refused.
  [[nodiscard]] bool SaveFailed() const { return saveFailed_; }

  // What the user does to a row. All but the last two tick its Enabled box.
  void ChooseStartTime(int index, schedule::TimeOfDay time);
  void ChooseDuration(int index, int hours, int minutes);
  void ChooseEndTime(int index, schedule::TimeOfDay time);
  void ChooseChannel(int index, int position);
  void TickIntegrel(int index, bool ticked);
  void TickCleftune(int index, bool ticked);
  void TickGrab(int index, bool ticked);
  void TickKill(int index, bool ticked);
  void ChooseMP3BitRate(int index, std::string text);
  void TickEnabled(int index, bool ticked);
  void cmdClear(int index);

  /// Runs the date picker on SelDate; it comes back when the user has chosen, or closed it, which is an
  /// answer as well.
  void cmdStartDate(int index, const std::function<void()>& picker);
  void cmdEndDate(int index, const std::function<void()>& picker);
  /// The two without the picker: `date` is the answer.
  void SetStartDate(int index, base::DateValue date);
  void SetEndDate(int index, base::DateValue date);

  /// Moves the end of a row after its start and duration.
  void CalculateEndTime(int index);
  /// Moves the duration of a row after its end, and the end to where that duration leads.
  void CalculateDuration(int index);

  /// Whether the row's entry has ever been saved.
  [[nodiscard]] bool IsStored(int index) const;
  /// Saves one row if the rows go together. Otherwise nothing is written, and the text is why.
  [[nodiscard]] std::optional<std::string> SaveRow(int index);

  /// Saves all rows, or tells the user what is in conflict and writes nothing. True if the scheduler is to
  /// close now.
  bool cmdSave();

  /// A request to close: by the user or the scheduler's own window, or else by the system. False refuses it.
  /// A close reloads the schedule, whether or not anything was saved.
  [[nodiscard]] bool MayClose(bool askedHere);

 private:
  [[nodiscard]] static std::size_t Position(int index) { return static_cast<std::size_t>(index); }
  [[nodiscard]] schedule::SchedulerRow& RowAt(int index) { return rows_.at(Position(index)); }
  /// The row is wanted, or it would not have been touched.
  schedule::SchedulerRow& Changed(int index);
  void SetEnd(int index, schedule::SchedulerMoment end);
  [[nodiscard]] base::DateValue DateForPicker(const schedule::SchedulerMoment& moment) const;

  SchedulerPorts ports_;
  std::vector<schedule::SchedulerChannel> channels_;
  schedule::SchedulerRows rows_;
  bool schedDirty_ = false;
  bool saveFailed_ = false;
  bool calculating_ = false;
};

}  // namespace kestrune::presenters
