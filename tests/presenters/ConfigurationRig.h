#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "config/formats/FileSpecs.h"
#include "presenters/Configuration.h"
#include "support/FakeAutostart.h"
#include "support/RecordingCaptureFile.h"
#include "support/ScriptedDialogs.h"
#include "support/SettingsRig.h"

namespace kestrune::test {

/// The configuration over settings in memory; what it asked of the outside is kept.
class ConfigurationRig : public SettingsRig {
 public:
  ConfigurationRig() {
    OnPrepare = [this] { Specs.SetFileSpecs(-1); };
  }

  ScriptedDialogs Dialogs;
  FakeAutostart Autostart;
  RecordingCaptureFile Idle;
  std::int16_t CaptureSlot = 0;
  config::FileSpecs Specs{[this](std::int16_t slot) { return slot == 1 - CaptureSlot ? &Idle : nullptr; },
                          Settings, CaptureSlot, [] { return std::nullopt; }};
  std::vector<recorder::InputDevice> Devices{{.Name = "Built-in Audio", .Index = 0, .Id = "built-in"},
                                             {.Name = "USB Audio CODEC", .Index = 3, .Id = "usb"}};

  presenters::ConfigurationAccess Access() {
    return {.Settings = Door,
            .FileSpecs = Specs,
            .Dialogs = Dialogs,
            .Environment = Environment,
            .Files = Files,
            .Autostart = Autostart,
            .Devices = [this] { return Devices; }};
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
