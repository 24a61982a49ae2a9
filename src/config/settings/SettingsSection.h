#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/SettingsStore.h"

namespace kestrune::config {

/// The part of the settings store that belongs to one unit: application "Lorimel", section "Kestrune"
/// followed by the unit. A typed read returns the default for a key that is absent and for a text that is no
/// value of the type (not a number, or outside the width). A save returns false if the store could not be
/// written.
class SettingsSection {
 public:
  static constexpr std::string_view kApplication = "Lorimel";

  /// The store must outlive the section.
  explicit SettingsSection(platform::SettingsStore& store, std::string_view multiUnit = {});

  void SetMultiUnit(std::string_view multiUnit);
  [[nodiscard]] const std::string& Name() const { return name_; }

  [[nodiscard]] std::string Text(std::string_view key, std::string_view defaultText) const;
  [[nodiscard]] std::int16_t Int16(std::string_view key, std::int16_t defaultValue) const;
  [[nodiscard]] std::int32_t Int32(std::string_view key, std::int32_t defaultValue) const;
  [[nodiscard]] bool Bool(std::string_view key, bool defaultValue) const;
  [[nodiscard]] float Single(std::string_view key, float defaultValue) const;

  [[nodiscard]] bool SaveText(std::string_view key, std::string_view value) const;
  [[nodiscard]] bool SaveInt16(std::string_view key, std::int16_t value) const;
  [[nodiscard]] bool SaveInt32(std::string_view key, std::int32_t value) const;
  [[nodiscard]] bool SaveBool(std::string_view key, bool value) const;
  [[nodiscard]] bool SaveSingle(std::string_view key, float value) const;

 private:
  platform::SettingsStore& store_;
  std::string name_;
};

}  // namespace kestrune::config
