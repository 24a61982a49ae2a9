#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// The per-user store of named text values. Applications, sections and keys compare without regard to case.
/// A value written is on disk when the call returns, and a write never undoes what another process has
/// written to another key meanwhile. Used from the main thread.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// The stored text, or the default if the key is absent.
  [[nodiscard]] virtual std::string GetSetting(std::string_view application, std::string_view section,
                                               std::string_view key, std::string_view defaultText) = 0;
  /// False if the store could not be written.
  [[nodiscard]] virtual bool SaveSetting(std::string_view application, std::string_view section,
                                         std::string_view key, std::string_view value) = 0;
  /// False if the key is absent or the store could not be written.
  [[nodiscard]] virtual bool DeleteSetting(std::string_view application, std::string_view section,
                                           std::string_view key) = 0;
};

}  // namespace kestrune::platform
