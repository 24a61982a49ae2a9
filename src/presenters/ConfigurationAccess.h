#pragma once

#include <functional>
#include <vector>

#include "config/formats/FileSpecs.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "recorder/InputDevices.h"

namespace kestrune::presenters {

/// What the configuration works on: the settings of the running program, and the doors through which a change
/// takes effect. All of it must outlive what is built on it.
struct ConfigurationAccess {
  config::Settings& Settings;
  const config::SettingsSection& Section;
  config::FileSpecs& FileSpecs;
  platform::Dialogs& Dialogs;
  const platform::Environment& Environment;
  /// The usable input devices that the user chooses from.
  std::function<std::vector<recorder::InputDevice>()> Devices;
  /// Stops what is being recorded; runs before another file format is taken over.
  std::function<void()> cmdStop;
  /// Runs after a save that chose another input device.
  std::function<void()> DeviceChanged;
};

}  // namespace kestrune::presenters
