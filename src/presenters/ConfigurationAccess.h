#pragma once

#include <functional>
#include <vector>

#include "config/formats/FileSpecs.h"
#include "config/settings/SettingsDoor.h"
#include "platform/Autostart.h"
#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "recorder/InputDevices.h"

namespace kestrune::presenters {

/// What the configuration works on. All of it must outlive what is built on it.
struct ConfigurationAccess {
  config::SettingsDoor& Settings;
  config::FileSpecs& FileSpecs;
  platform::Dialogs& Dialogs;
  const platform::Environment& Environment;
  const platform::Files& Files;
  platform::Autostart& Autostart;
  /// The usable input devices that the user chooses from.
  std::function<std::vector<recorder::InputDevice>()> Devices;
};

}  // namespace kestrune::presenters
