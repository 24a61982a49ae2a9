#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/formats/FileSpecs.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "presenters/Configuration.h"
#include "support/FakeEnvironment.h"
#include "support/MemorySettingsStore.h"
#include "support/RecordingCaptureFile.h"
#include "support/ScriptedDialogs.h"

namespace kestrune::test {

/// The configuration over settings in memory; what it asked of the outside is kept.
class ConfigurationRig {
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

  config::Settings Settings;
  MemorySettingsStore Store;
  config::SettingsSection Section{Store};
  FakeEnvironment Environment;
  ScriptedDialogs Dialogs;
  RecordingCaptureFile Idle;
  std::int16_t CaptureSlot = 0;
  config::FileSpecs Specs{[this](std::int16_t slot) { return slot == 1 - CaptureSlot ? &Idle : nullptr; },
                          Settings, CaptureSlot, [] { return std::nullopt; }};
  std::vector<recorder::InputDevice> Devices{{.Name = "Built-in Audio", .Index = 0, .Id = "built-in"},
                                             {.Name = "USB Audio CODEC", .Index = 3, .Id = "usb"}};
  int Stops = 0;  ///< of a recording
  int DeviceChanges = 0;

  presenters::ConfigurationAccess Access() {
    return {.Settings = Settings,
            .Section = Section,
            .FileSpecs = Specs,
            .Dialogs = Dialogs,
            .Environment = Environment,
            .Devices = [this] { return Devices; },
            .cmdStop = [this] { ++Stops; },
            .DeviceChanged = [this] { ++DeviceChanges; }};
  }

  presenters::Configuration Window{Access()};
};

/// The row of a list that has this text, or -1.
inline int RowOf(const presenters::ChoiceList& list, std::string_view text) {
  for (std::size_t row = 0; row < list.Rows.size(); ++row) {
    if (list.Rows[row].Text == text) return static_cast<int>(row);
  }
  return -1;
}

}  // namespace kestrune::test
