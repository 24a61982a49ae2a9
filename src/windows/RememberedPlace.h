#pragma once

#include <string_view>

#include "config/settings/SettingsSection.h"

class QWidget;

/// Where a window stood when it was closed last: the settings NAMETop and NAMELeft and, for a window whose size
/// is the user's, NAMEHeight and NAMEWidth, in twips.
namespace kestrune::windows {

enum class Remembered { Place, PlaceAndSize };

/// Leaves the window as it is designed where nothing is remembered.
void RestorePlace(QWidget& window, const config::SettingsSection& section, std::string_view name,
                  Remembered what = Remembered::Place);
/// In the order top, left, height, width; not at all unless the window is in the normal state.
void SavePlace(const QWidget& window, const config::SettingsSection& section, std::string_view name,
               Remembered what = Remembered::Place);

}  // namespace kestrune::windows
