#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "platform/Environment.h"

namespace kestrune::config {

enum class SettingType : std::uint8_t { Int16, Int32, Bool, Text };

/// One setting: its key in the store and its field in the record. The default is the field's own in a fresh
/// record.
struct SettingKey {
  std::string_view Key;
  SettingType Type;
  /// The field as the store holds it.
  std::string (*Text)(const Settings& settings);
  /// Reads the field from a text; false if the text is no value of the type, and the field then stays.
  bool (*Read)(Settings& settings, std::string_view text);
};

/// All general and format settings in the order in which the start reads them.
[[nodiscard]] std::span<const SettingKey> SettingKeys();
/// The settings of one format record, in the order in which its option window saves them; by the format's
/// code, and empty for an unknown one.
[[nodiscard]] std::span<const SettingKey> FormatKeys(std::string_view fileFormat);
/// By key, without regard to case; null if there is none.
[[nodiscard]] const SettingKey* FindSettingKey(std::string_view key);

/// Reads every setting. A folder of recordings that is absent, or the product's default "C:\", becomes the
/// environment's.
void LoadSettings(const SettingsSection& section, const platform::Environment& environment,
                  Settings& settings);

/// Saves the field of one key, or of each key in order; false if the store could not be written or there is
/// no such key.
[[nodiscard]] bool SaveSetting(const SettingsSection& section, const Settings& settings,
                               std::string_view key);
[[nodiscard]] bool SaveSettings(const SettingsSection& section, const Settings& settings,
                                std::span<const SettingKey> keys);

}  // namespace kestrune::config
