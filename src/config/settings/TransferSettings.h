#pragma once

#include <string_view>

#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/SettingsStore.h"

namespace kestrune::config {

/// Moves the settings and the data folder of the older release to where this one keeps them, once: it acts
/// only while the old store holds a window position. Failures are swallowed, with two intended
/// consequences: files of the old folder are deleted even if they could not be copied, and an old file that cannot
/// be deleted is tried again without end. The start calls it before the unit is known, so with an empty one.
void TransferSettings(platform::SettingsStore& store, platform::Files& files,
                      const platform::Environment& environment, std::string_view multiUnit);

}  // namespace kestrune::config
