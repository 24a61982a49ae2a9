#include "support/MemorySettingsStore.h"

#include <fmt/format.h>

#include "base/Text.h"

namespace kestrune::test {

MemorySettingsStore::Name MemorySettingsStore::Fold(std::string_view application, std::string_view section,
                                                    std::string_view key) {
  return {base::ToLower(application), base::ToLower(section), base::ToLower(key)};
}

std::string MemorySettingsStore::GetSetting(std::string_view application, std::string_view section,
                                            std::string_view key, std::string_view defaultText) {
  Calls.push_back(fmt::format("get {}/{}/{}", application, section, key));
  const auto found = values_.find(Fold(application, section, key));
  return found == values_.end() ? std::string(defaultText) : found->second;
}

bool MemorySettingsStore::SaveSetting(std::string_view application, std::string_view section,
                                      std::string_view key, std::string_view value) {
  Calls.push_back(fmt::format("save {}/{}/{}={}", application, section, key, value));
  if (FailWrites) return false;
  Put(application, section, key, value);
  return true;
}

bool MemorySettingsStore::DeleteSetting(std::string_view application, std::string_view section,
                                        std::string_view key) {
  Calls.push_back(fmt::format("delete {}/{}/{}", application, section, key));
  if (FailWrites) return false;
  return values_.erase(Fold(application, section, key)) > 0;
}

void MemorySettingsStore::Put(std::string_view application, std::string_view section, std::string_view key,
                              std::string_view value) {
  values_[Fold(application, section, key)] = value;
}

std::string MemorySettingsStore::Stored(std::string_view application, std::string_view section,
                                        std::string_view key) const {
  const auto found = values_.find(Fold(application, section, key));
  return found == values_.end() ? "(absent)" : found->second;
}

}  // namespace kestrune::test
