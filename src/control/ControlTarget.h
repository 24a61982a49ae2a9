#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "control/Reports.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::control {

struct CommandResult {
  bool Done = false;
  std::string Reason;  ///< one line for a person, if it was not done
};

struct SettingResult {
  bool Done = false;
  std::string Reason;
  std::string Value;
};

struct UpdateResult {
  bool Done = false;
  std::string Reason;
  UpdateReport Report;
};

/// What the control socket can do to a unit. All calls come on the main thread, also from within an event
/// pump of a call that waits for the radio, and none throws. Arguments have been checked by the command
/// table.
class ControlTarget {
 public:
  virtual ~ControlTarget() = default;

  [[nodiscard]] virtual StatusReport Status() = 0;
  /// In the order of the channel numbers.
  [[nodiscard]] virtual std::vector<ChannelReport> Channels() = 0;
  /// The three doors of the user: the two buttons and the channel.
  [[nodiscard]] virtual CommandResult Record() = 0;
  [[nodiscard]] virtual CommandResult Stop() = 0;
  [[nodiscard]] virtual CommandResult Tune(int channelNumber) = 0;  ///< 1 to 255
  [[nodiscard]] virtual CommandResult Mute(bool muted) = 0;
  /// The newest lines of the log, oldest first.
  [[nodiscard]] virtual std::vector<std::string> LogLines(std::size_t atMost) = 0;
  [[nodiscard]] virtual SettingResult Get(std::string_view key) = 0;
  [[nodiscard]] virtual CommandResult Set(std::string_view key, std::string_view value) = 0;
  /// All ten entries, in their order.
  [[nodiscard]] virtual std::vector<ScheduleReport> Schedule() = 0;
  /// The scheduler's doors; entries are numbered 1 to 10. A refusal that the scheduler has words for comes with
  /// those words.
  [[nodiscard]] virtual CommandResult SetSchedule(const ScheduleChange& change) = 0;
  [[nodiscard]] virtual CommandResult EnableSchedule(int number, bool enabled) = 0;
  [[nodiscard]] virtual CommandResult ClearSchedule(int number) = 0;
  [[nodiscard]] virtual ListsReport Lists() = 0;
  /// One entry more, or less, in the list file; it takes effect at once. The text is not blank.
  [[nodiscard]] virtual CommandResult AddToList(schedule::RestrictList list, std::string_view text) = 0;
  [[nodiscard]] virtual CommandResult RemoveFromList(schedule::RestrictList list, std::string_view text) = 0;
  /// Asks the maker's server for a newer version; installs nothing. Takes as long as the server, and serves
  /// events meanwhile.
  [[nodiscard]] virtual UpdateResult Update() = 0;
  /// Asks for the end of the program; the end itself comes after the call has returned, so that the reply
  /// still goes out.
  [[nodiscard]] virtual CommandResult Quit() = 0;
};

}  // namespace kestrune::control
