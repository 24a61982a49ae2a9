#include "config/settings/SettingsSection.h"

#include "base/Numbers.h"

namespace kestrune::config {

SettingsSection::SettingsSection(platform::SettingsStore& store, std::string_view multiUnit) : store_(store) {
  SetMultiUnit(multiUnit);
}

void SettingsSection::SetMultiUnit(std::string_view multiUnit) {
  name_ = "Kestrune";
  name_ += multiUnit;
}

std::string SettingsSection::Text(std::string_view key, std::string_view defaultText) const {
  return store_.GetSetting(kApplication, name_, key, defaultText);
}

std::int16_t SettingsSection::Int16(std::string_view key, std::int16_t defaultValue) const {
  return base::ToInt16(Text(key, {})).value_or(defaultValue);
}

std::int32_t SettingsSection::Int32(std::string_view key, std::int32_t defaultValue) const {
  return base::ToInt32(Text(key, {})).value_or(defaultValue);
}

bool SettingsSection::Bool(std::string_view key, bool defaultValue) const {
  return base::ToBool(Text(key, {})).value_or(defaultValue);
}

float SettingsSection::Single(std::string_view key, float defaultValue) const {
  return base::ToSingle(Text(key, {})).value_or(defaultValue);
}

bool SettingsSection::SaveText(std::string_view key, std::string_view value) const {
  return store_.SaveSetting(kApplication, name_, key, value);
}

bool SettingsSection::SaveInt16(std::string_view key, std::int16_t value) const {
  return SaveText(key, std::to_string(value));
}

bool SettingsSection::SaveInt32(std::string_view key, std::int32_t value) const {
  return SaveText(key, std::to_string(value));
}

bool SettingsSection::SaveBool(std::string_view key, bool value) const {
  return SaveText(key, base::BoolText(value));
}

bool SettingsSection::SaveSingle(std::string_view key, float value) const {
  return SaveText(key, base::SingleText(value));
}

}  // namespace kestrune::config
