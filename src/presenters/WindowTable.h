#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "config/settings/Settings.h"
#include "presenters/DesktopRecord.h"
#include "recorder/WindowName.h"

namespace kestrune::presenters {

/// One window that the main window opens.
struct WindowRow {
  recorder::WindowName Name;
  /// Its entry in the menu of the main window, with "&" before the letter that chooses it; empty if it has
  /// none.
  const char* Entry = "";
  const char* EntryText = "";
  char Key = '\0';  ///< opens it together with Ctrl; 0 if there is none
  /// Its check box on the main window, with the caption and the tip; empty if it has none.
  const char* Box = "";
  const char* BoxText = "";
  const char* BoxTip = "";
  bool DesktopRecord::*Checked = nullptr;  ///< the state of the box
  /// The setting of this key remembers the box for the next start; empty if nothing does.
  std::string_view SettingKey{};
  std::int16_t config::Settings::*Setting = nullptr;
  bool Permanent = false;         ///< lives as long as the program; a close hides it
  bool HidesWithMain = true;      ///< is hidden while the main window is minimized
  bool NeedsBoxToReturn = false;  ///< comes back from there only if its box is checked
};

/// All of them, in the order of the check boxes, then those without.
[[nodiscard]] std::span<const WindowRow> WindowTable();
[[nodiscard]] const WindowRow& RowOf(recorder::WindowName name);

}  // namespace kestrune::presenters
