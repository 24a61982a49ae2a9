#pragma once

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/SettingsStore.h"

namespace kestrune::test {

/// A settings store in memory. It keeps what it was asked, so that a test sees the order of reads and writes.
class MemorySettingsStore final : public platform::SettingsStore {
 public:
  [[nodiscard]] std::string GetSetting(std::string_view application, std::string_view section,
                                       std::string_view key, std::string_view defaultText) override;
  [[nodiscard]] bool SaveSetting(std::string_view application, std::string_view section, std::string_view key,
                                 std::string_view value) override;
  [[nodiscard]] bool DeleteSetting(std::string_view application, std::string_view section,
                                   std::string_view key) override;

  /// Puts a value there without leaving a trace in Calls.
  void Put(std::string_view application, std::string_view section, std::string_view key,
           std::string_view value);
  /// The stored text, or "(absent)".
  [[nodiscard]] std::string Stored(std::string_view application, std::string_view section,
                                   std::string_view key) const;
  /// How many values there are.
  [[nodiscard]] std::size_t Count() const { return values_.size(); }

  /// While set, every save and delete fails and changes nothing.
  bool FailWrites = false;
  /// Each call as "get APPLICATION/SECTION/KEY", "save APPLICATION/SECTION/KEY=VALUE" or
  /// "delete APPLICATION/SECTION/KEY", names as they were given.
  std::vector<std::string> Calls;

 private:
  using Name = std::tuple<std::string, std::string, std::string>;
  [[nodiscard]] static Name Fold(std::string_view application, std::string_view section,
                                 std::string_view key);

  std::map<Name, std::string> values_;
};

}  // namespace kestrune::test
