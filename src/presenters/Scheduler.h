#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "platform/Dialogs.h"
#include "presenters/SchedulePlan.h"
#include "schedule/entries/EntryEditors.h"
#include "schedule/entries/SchedulerRow.h"
#include "schedule/entries/SchedulerSettings.h"

namespace kestrune::presenters {

/// What the scheduler needs of the program. All references must outlive the scheduler.
struct SchedulerPorts {
  base::EventLoop& Loop;  ///< for the present moment
  platform::Dialogs& Dialogs;
  base::Journal& Log;
  schedule::EntryEditors& Editors;  ///< knows the scheduler while it exists
  schedule::SchedulerSettings Settings;
  std::function<void()> ReloadSchedule;
  /// Whether an entry's bit rate counts: the recordings are MP3.
  std::function<bool()> BitRatesCount = [] { return true; };
};

/// The rules of the scheduler's window: ten rows, start plus duration and end kept in step both ways, overlaps
/// refused when it saves. A new one is made each time the window opens. Row indices run from 0 to 9.
class Scheduler final : public schedule::EntryEditor {
 public:
  /// Reads the stored entries. The channels are in the order in which the user sees them; after them come those that
  /// stored entries have and the list has not.
  Scheduler(SchedulerPorts ports, std::vector<schedule::SchedulerChannel> channels);
  ~Scheduler() override { ports_.Editors.Remove(*this); }
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;

  [[nodiscard]] const schedule::SchedulerRow& Row(int index) const { return rows_.at(Position(index)); }
  [[nodiscard]] const schedule::SchedulerRows& Rows() const { return rows_; }
  [[nodiscard]] const std::vector<schedule::SchedulerChannel>& Channels() const { return channels_; }
  /// An item of the list of channels: the number right-aligned in three characters, " - " and the station.
  [[nodiscard]] static std::string ChannelItem(const schedule::SchedulerChannel& channel);

  /// What comes of the rows as they are, saved or not. Costs little within one minute in which no row changes.
  [[nodiscard]] const SchedulePlan& Plan();

  /// The value exchanged with the date picker.
  base::DateValue SelDate;
  /// Something has changed since the load or the last save.
  [[nodiscard]] bool SchedDirty() const { return schedDirty_; }
  [[nodiscard]] bool HasChanges() const override { return schedDirty_; }
  /// Reads the stored entries again and calls Reread.
  void EntriesChanged() override;
  /// The rows and the list of channels have been read again: the window shows them.
  std::function<void()> Reread = [] {};
  /// The last save was refused.
  [[nodiscard]] bool SaveFailed() const { return saveFailed_; }

  // What the user does to a row. All but the last three tick its Enabled box.
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

  /// Runs the date picker on SelDate. `picker` returns when the user has chosen, or has closed it, which counts as an
  /// answer.
  void cmdStartDate(int index, const std::function<void()>& picker);
  void cmdEndDate(int index, const std::function<void()>& picker);
  /// The two without the picker: `date` is the answer.
  void SetStartDate(int index, base::DateValue date);
  void SetEndDate(int index, base::DateValue date);

  /// Sets the end of a row from its start and duration.
  void CalculateEndTime(int index);
  /// Sets the duration of a row from its start and end, and the end to what that duration makes it.
  void CalculateDuration(int index);

  /// Saves all rows, or tells the user what is in conflict and writes nothing. Settings that cannot be written are
  /// logged. Returns true if the window is to close now.
  bool cmdSave();

  /// A request to close: `askedHere` if the user or the window made it, otherwise the system did. Returns false to
  /// refuse it. A close reloads the schedule, whether or not anything was saved.
  [[nodiscard]] bool MayClose(bool askedHere);

 private:
  void ReadRows();
  [[nodiscard]] static std::size_t Position(int index) { return static_cast<std::size_t>(index); }
  [[nodiscard]] schedule::SchedulerRow& RowAt(int index) { return rows_.at(Position(index)); }
  /// The row, marked as changed and enabled.
  schedule::SchedulerRow& Changed(int index);
  void SetEnd(int index, schedule::SchedulerMoment end);
  [[nodiscard]] base::DateValue DateForPicker(const schedule::SchedulerMoment& moment) const;

  SchedulerPorts ports_;
  std::vector<schedule::SchedulerChannel> channels_;
  std::size_t listed_;  // how many of the channels are in the list of channels; they come first
  schedule::SchedulerRows rows_;
  bool schedDirty_ = false;
  bool saveFailed_ = false;
  bool calculating_ = false;
  std::optional<PlanSource> planned_;  // what the plan was made of
  SchedulePlan plan_;
};

}  // namespace kestrune::presenters
