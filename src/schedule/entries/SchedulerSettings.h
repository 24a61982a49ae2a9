#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// The unit's settings, as much as the scheduler needs of them.
struct SchedulerSettings {
  /// The stored text of a key, the default if the key is absent.
  std::function<std::string(std::string_view key, std::string_view defaultText)> Read;
  /// False if the settings could not be written.
  std::function<bool(std::string_view key, std::string_view text)> Save;
};

/// The list of bit rates: "8 Mono", "8 Stereo" to "192 Stereo".
[[nodiscard]] const std::vector<std::string>& SchedulerBitRates();

/// A row as it stands before anything is read into it: today at midnight for an hour, not enabled.
[[nodiscard]] SchedulerRow EmptySchedulerRow(base::DateValue now);

/// Reads entry `number`, 1 to 10. A text that the row cannot show leaves its control as it stands in the
/// empty row. An entry for a single date that has ended by `now` is not enabled, whatever is stored.
[[nodiscard]] SchedulerRow ReadSchedulerRow(const SchedulerSettings& settings, int number,
                                            const std::vector<SchedulerChannel>& channels,
                                            base::DateValue now);

/// Writes entry `number` under its nine keys; without channels the stored channel stays. A row that lasts no
/// minute is first unticked. False if the settings could not be written.
[[nodiscard]] bool SaveSchedulerRow(const SchedulerSettings& settings, int number,
                                    const std::vector<SchedulerChannel>& channels, SchedulerRow& row);

}  // namespace kestrune::schedule
