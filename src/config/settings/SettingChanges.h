#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"

namespace kestrune::config {

/// What became of a wish to change a setting.
struct SettingOutcome {
  /// Empty if it was done; else one line that says which value was refused, and what is allowed.
  std::string Refusal;
  /// The format or its record changed: SetFileSpecs(-1) is to follow.
  bool FormatChanged = false;
  /// False if the running program has the new value, but the store could not be written.
  bool Saved = true;

  [[nodiscard]] bool Done() const { return Refusal.empty(); }
};

/// Reads and changes one setting of the running program at a time, by its key and without regard to case. A
/// change follows the rules of a save of the configuration, or those of the control that owns the setting,
/// and is in the store when the call returns; the two list switches are stored at exit, as ever.
class SettingChanges {
 public:
  /// The references must outlive this object. `beforeFileFormatChange` runs before another format is taken
  /// over and has to stop what is being recorded.
  SettingChanges(Settings& settings, const SettingsSection& section,
                 std::function<void()> beforeFileFormatChange);

  /// The present value as text, or nothing if there is no such key.
  [[nodiscard]] std::optional<std::string> Get(std::string_view key) const;
  [[nodiscard]] SettingOutcome Set(std::string_view key, std::string_view value);

 private:
  Settings& settings_;
  const SettingsSection& section_;
  std::function<void()> beforeFileFormatChange_;
};

}  // namespace kestrune::config
