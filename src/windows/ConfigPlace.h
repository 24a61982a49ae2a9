#pragma once

#include "config/settings/SettingsSection.h"

class QWidget;

/// The place that the configuration and the window of filename formats share: whichever closes last wins.
namespace kestrune::windows {

/// Leaves the window where it stands if no place was ever saved.
void MoveToConfigPlace(QWidget& window, const config::SettingsSection& section);
void SaveConfigPlace(const QWidget& window, const config::SettingsSection& section);

}  // namespace kestrune::windows
