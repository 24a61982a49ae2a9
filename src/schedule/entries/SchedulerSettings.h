#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "schedule/entries/SchedulerRow.h"

namespace kestrune::schedule {

/// What the scheduler needs of the unit's settings.
struct SchedulerSettings {
  /// Returns the stored text of a key, or the default if the key is absent.
  std::function<std::string(std::string_view key, std::string_view defaultText)> Read;
  /// Returns false if the settings could not be written.
  std::function<bool(std::string_view key, std::string_view text)> Save;
};

/// Whether entry `number`, 1 to 10, was ever saved.
[[nodiscard]] bool IsStored(const SchedulerSettings& settings, int number);
/// The channel of entry `number` as it is stored; nothing if none is stored, or a text that is not a number.
[[nodiscard]] std::optional<std::int16_t> StoredChannel(const SchedulerSettings& settings, int number);

/// The list of bit rates: "8 Mono", "8 Stereo" to "192 Stereo".
[[nodiscard]] const std::vector<std::string>& SchedulerBitRates();

/// A row before anything is read into it: today at midnight for an hour, not enabled.
[[nodiscard]] SchedulerRow EmptySchedulerRow(base::DateValue now);

/// Reads entry `number`, 1 to 10. A text that the row cannot show leaves its control as it is in the empty row; a
/// channel that is not in the list leaves the first one. An entry for a single date that has ended by `now` is not
/// enabled, whatever is stored.
[[nodiscard]] SchedulerRow ReadSchedulerRow(const SchedulerSettings& settings, int number,
                                            const std::vector<SchedulerChannel>& channels,
                                            base::DateValue now);

/// Writes entry `number` under its nine keys; the stored channel stays if the row has none. A row with a duration
/// of 0:00 is unticked first. Returns false if the settings could not be written.
[[nodiscard]] bool SaveSchedulerRow(const SchedulerSettings& settings, int number,
                                    const std::vector<SchedulerChannel>& channels, SchedulerRow& row);

}  // namespace kestrune::schedule
