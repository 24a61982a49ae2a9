#pragma once

#include <string_view>

#include "config/settings/SettingsSection.h"

class QWidget;

/// Where a window was when it was last closed: the settings NAMETop and NAMELeft and, for a resizable window,
/// NAMEHeight and NAMEWidth, in twips.
namespace kestrune::windows {

enum class Remembered { Place, PlaceAndSize };

/// Leaves the window as it is if nothing is remembered.
void RestorePlace(QWidget& window, const config::SettingsSection& section, std::string_view name,
                  Remembered what = Remembered::Place);
/// Saves in the order top, left, height, width; saves nothing unless the window is in the normal state.
void SavePlace(const QWidget& window, const config::SettingsSection& section, std::string_view name,
               Remembered what = Remembered::Place);

}  // namespace kestrune::windows
