#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "config/settings/Settings.h"
#include "config/settings/SettingsDoor.h"
#include "config/settings/SettingsSection.h"
#include "support/FakeEnvironment.h"
#include "support/MemoryFiles.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingJournal.h"

namespace kestrune::test {

/// The door for settings over a store in memory. It keeps which effects a change had.
class SettingsRig {
 public:
  /// The saves so far as "KEY=VALUE".
  [[nodiscard]] std::vector<std::string> Saves() const {
    constexpr std::string_view kSave = "save Lorimel/Kestrune/";
    std::vector<std::string> saves;
    for (const std::string& call : Store.Calls) {
      if (call.starts_with(kSave)) saves.push_back(call.substr(kSave.size()));
    }
    return saves;
  }
  [[nodiscard]] std::string Stored(std::string_view key) const {
    return Store.Stored("Lorimel", "Kestrune", key);
  }

  /// How often the recording has been stopped, for another file format.
  [[nodiscard]] std::ptrdiff_t Stops() const {
    return std::ranges::count_if(Effects,
                                 [](const std::string& effect) { return effect.starts_with("stop"); });
  }

  config::Settings Settings;
  MemorySettingsStore Store;
  config::SettingsSection Section{Store};
  FakeEnvironment Environment;
  MemoryFiles Files;
  RecordingJournal Journal;
  std::function<void()> OnPrepare = [] {};
  /// "stop FORMAT" with the format of that moment, "prepare" and "device", in their order.
  std::vector<std::string> Effects;
  config::SettingsDoor Door{
      {.Settings = Settings, .Section = Section, .Environment = Environment, .Files = Files, .Log = Journal},
      {.StopRecording = [this] { Effects.push_back("stop " + Settings.FileFormat); },
       .PrepareFormat =
           [this] {
             Effects.emplace_back("prepare");
             OnPrepare();
           },
       .DeviceChanged = [this] { Effects.emplace_back("device"); }}};
};

}  // namespace kestrune::test
