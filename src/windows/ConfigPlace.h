#pragma once

#include "config/settings/SettingsSection.h"

class QWidget;

/// The place that the configuration and the window of filename formats share: whichever closes last wins.
namespace kestrune::windows {

/// Leaves the window where it is if no place has been saved.
void MoveToConfigPlace(QWidget& window, const config::SettingsSection& section);
void SaveConfigPlace(const QWidget& window, const config::SettingsSection& section);

}  // namespace kestrune::windows
