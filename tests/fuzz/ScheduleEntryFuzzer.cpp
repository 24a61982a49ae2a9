// The texts of a stored entry, one a line, are whatever somebody has written into the settings: reading them never
// fails, what is due ends later, and the scheduler's row is one that can be shown and saved.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "base/Text.h"
#include "schedule/entries/DueSearch.h"
#include "schedule/entries/NextRun.h"
#include "schedule/entries/ReloadSchedule.h"
#include "schedule/entries/SchedulerSettings.h"

using namespace kestrune;

namespace {

constexpr std::array kKeys = {"ScheduleEnabled1",   "ScheduleChannel1",   "ScheduleStartDate1",
                              "ScheduleDuration1",  "ScheduleIntegrel1",  "ScheduleCleftune1",
                              "ScheduleMatchGrab1", "ScheduleMatchKill1", "ScheduleMP3BitRate1"};

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::map<std::string, std::string, std::less<>> stored;
  const std::vector<std::string> lines = base::Split(std::string(data, data + size), '\n');
  for (std::size_t i = 0; i < kKeys.size() && i < lines.size(); ++i) stored[kKeys.at(i)] = lines[i];
  const auto read = [&stored](std::string_view key, std::string_view text) {
    const auto place = stored.find(key);
    return place != stored.end() ? place->second : std::string(text);
  };
  const base::DateValue now = base::DateValue::FromCivil(2005, 3, 9, 12, 0, 0);

  schedule::ScheduleEntries entries;
  schedule::ReloadSchedule(read, now, entries);
  for (int hour = 0; hour < 7 * 24; hour += 5) {
    const base::DateValue moment = now.AddHours(hour);
    const auto due = schedule::DueSearch(entries, [moment] { return moment; }).Find();
    Require(!due || (due->Due == 1 && due->RemainingUntil >= moment));
    const auto next = schedule::NextStart(entries[0], moment);
    Require(!next || *next >= moment);
  }

  const std::vector<schedule::SchedulerChannel> channels{{.Number = 4, .Station = "Lantern"},
                                                         {.Number = 44, .Station = "Wave"}};
  const schedule::SchedulerSettings settings{.Read = read,
                                             .Save = [&stored](std::string_view key, std::string_view text) {
                                               stored.insert_or_assign(std::string(key), std::string(text));
                                               return true;
                                             }};
  schedule::SchedulerRow row = schedule::ReadSchedulerRow(settings, 1, channels, now);
  Require(schedule::SaveSchedulerRow(settings, 1, channels, row));
  Require(schedule::IsStored(settings, 1) && !schedule::IsStored(settings, 2));
  const auto channel = schedule::StoredChannel(settings, 1);
  Require(!channel || stored["ScheduleChannel1"] == std::to_string(*channel));
  // What was saved reads as the same row, so that a save without a change changes nothing.
  schedule::SchedulerRow again = schedule::ReadSchedulerRow(settings, 1, channels, now);
  const auto once = stored;
  Require(schedule::SaveSchedulerRow(settings, 1, channels, again));
  Require(stored == once);
  return 0;
}
