#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "presenters/Scheduler.h"
#include "schedule/entries/SchedulerCalculations.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedDialogs.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// What surrounds a scheduler: settings in memory, a clock, two channels out of their order.
struct SchedulerWorld {
  [[nodiscard]] schedule::SchedulerSettings Settings() {
    return {
        .Read = [this](std::string_view key,
                       std::string_view text) { return Store.GetSetting("Lorimel", "Kestrune", key, text); },
        .Save = [this](
                    std::string_view key,
                    std::string_view text) { return Store.SaveSetting("Lorimel", "Kestrune", key, text); }};
  }
  [[nodiscard]] presenters::Scheduler Open() {
    return {{.Loop = Loop,
             .Dialogs = Dialogs,
             .Log = Journal,
             .Editors = Editors,
             .Settings = Settings(),
             .ReloadSchedule = [this] { ++Reloads; }},
            Channels};
  }
  /// The same for a window.
  [[nodiscard]] std::shared_ptr<presenters::Scheduler> Share() {
    return std::shared_ptr<presenters::Scheduler>(new presenters::Scheduler(Open()));
  }
  void Put(std::string_view key, std::string_view text) { Store.Put("Lorimel", "Kestrune", key, text); }
  [[nodiscard]] std::string Stored(std::string_view key) const {
    return Store.Stored("Lorimel", "Kestrune", key);
  }
  [[nodiscard]] std::vector<std::string> Saves() const {
    std::vector<std::string> saves;
    for (const std::string& call : Store.Calls)
      if (call.starts_with("save "))
        saves.push_back(call.substr(std::string("save Lorimel/Kestrune/").size()));
    return saves;
  }

  SimulatedEventLoop Loop;
  MemorySettingsStore Store;
  ScriptedDialogs Dialogs;
  RecordingJournal Journal;
  schedule::EntryEditors Editors;
  std::vector<schedule::SchedulerChannel> Channels{{.Number = 44, .Station = "Fred"},
                                                   {.Number = 8, .Station = "Neon 80s"}};
  int Reloads = 0;
};

/// A row that starts there, at a time of 24 hours, and lasts so long; its end is in step.
[[nodiscard]] inline schedule::SchedulerRow RowOf(std::string caption, int hour, int minute, int hours,
                                                  int minutes) {
  schedule::SchedulerRow row;
  row.Enabled = true;
  row.Start.Caption = std::move(caption);
  row.Start.Time = {.Hour = (hour + 11) % 12 + 1, .Minute = minute, .PM = hour > 11};
  row.DurationHours = hours;
  row.DurationMinutes = minutes;
  row.End = schedule::EndTimeOf(row);
  return row;
}

/// "Every Saturday 11:00 PM".
[[nodiscard]] inline std::string Shown(const schedule::SchedulerMoment& moment) {
  return fmt::format("{} {}:{:02} {}", moment.Caption, moment.Time.Hour, moment.Time.Minute,
                     moment.Time.PM ? "PM" : "AM");
}

/// A seed for a random run, printed; the variable KESTRUNE_SEED repeats one.
[[nodiscard]] inline std::uint32_t PrintedSeed() {
  const char* given = std::getenv("KESTRUNE_SEED");
  const std::uint32_t seed = given != nullptr ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10))
                                              : std::random_device()();
  std::cout << "seed " << seed << std::endl;
  return seed;
}

}  // namespace kestrune::test
