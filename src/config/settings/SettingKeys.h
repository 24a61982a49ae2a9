#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "config/settings/SettingChecks.h"
#include "config/settings/Settings.h"
#include "config/settings/SettingsSection.h"
#include "platform/Environment.h"

namespace kestrune::config {

enum class SettingType : std::uint8_t { Int16, Int32, Bool, Text, CutPlacement };

/// What a change of a setting brings about in the running program, besides the new value.
enum class SettingEffect : std::uint8_t {
  None,          ///< whoever uses the setting reads it afresh
  FileFormat,    ///< what is being recorded is stopped first; the idle capture slot is prepared afterwards
  FormatRecord,  ///< the idle capture slot is prepared
  InputDevice,   ///< the device is asked for its name; it is opened for the next capture
  Folder,        ///< a folder that cannot be written to is reported, each time that it is set
};

enum class SettingStored : std::uint8_t { AtOnce, AtExit };

/// One setting: its key in the store, its field in the record, and the rules for changing it. The default is the
/// field's own in a fresh record.
struct SettingKey {
  std::string_view Key;
  SettingType Type;
  /// The field as the store holds it.
  std::string (*Text)(const Settings& settings);
  /// Reads the field from a text; false if the text is no value of the type, and the field then stays.
  bool (*Read)(Settings& settings, std::string_view text);
  /// Copies the field from one record to another.
  void (*Copy)(Settings& to, const Settings& from);
  /// Null if every value of the type is allowed.
  SettingCheck Check = nullptr;
  SettingEffect Effect = SettingEffect::None;
  SettingStored Stored = SettingStored::AtOnce;
  /// What the setting follows from, for one that no command may change; else empty.
  std::string_view FollowsFrom = {};

  [[nodiscard]] constexpr SettingKey CheckedBy(SettingCheck check) const {
    SettingKey key = *this;
    key.Check = check;
    return key;
  }
  [[nodiscard]] constexpr SettingKey With(SettingEffect effect) const {
    SettingKey key = *this;
    key.Effect = effect;
    return key;
  }
  [[nodiscard]] constexpr SettingKey StoredAtExit() const {
    SettingKey key = *this;
    key.Stored = SettingStored::AtExit;
    return key;
  }
  [[nodiscard]] constexpr SettingKey Following(std::string_view what) const {
    SettingKey key = *this;
    key.FollowsFrom = what;
    return key;
  }
};

/// All general and format settings in the order in which the start reads them.
[[nodiscard]] std::span<const SettingKey> SettingKeys();
/// The settings of one format record, in the order in which its option window saves them; by the format's
/// code, and empty for an unknown one.
[[nodiscard]] std::span<const SettingKey> FormatKeys(std::string_view fileFormat);
/// By key, without regard to case; null if there is none.
[[nodiscard]] const SettingKey* FindSettingKey(std::string_view key);

/// Reads every setting. A value that cannot be read becomes the default, and so does an overlap, a FLAC level or an Opus bit
/// rate out of its range, or a list of favourites that is none. So does a folder of recordings that is absent, empty or the product's default "C:\": here the
/// default is the environment's.
void LoadSettings(const SettingsSection& section, const platform::Environment& environment,
                  Settings& settings);

/// Stores the field of one key; false if the store could not be written or there is no such key.
[[nodiscard]] bool SaveSetting(const SettingsSection& section, const Settings& settings,
                               std::string_view key);

}  // namespace kestrune::config
