#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "config/settings/SettingsDoor.h"
#include "presenters/OptionGroup.h"

namespace kestrune::presenters {

/// What an option window of buttons looks like.
struct OptionWindow {
  std::string_view FileFormat;  ///< its code
  std::string_view Caption;
  std::span<const OptionGroup> Groups;
};

/// One for each format whose settings are chosen by buttons alone.
[[nodiscard]] std::span<const OptionWindow> OptionWindows();
/// By the format's code; null if its window is another one.
[[nodiscard]] const OptionWindow* FindOptionWindow(std::string_view fileFormat);

/// The rules of such a window. It works on a copy of the format's record until `cmdOK`. A value without a
/// button sets none, and remains the record's value until the user chooses.
class FormatOptions {
 public:
  /// All must outlive this object.
  FormatOptions(const OptionWindow& design, config::SettingsDoor& settings);

  [[nodiscard]] const OptionWindow& Design() const { return design_; }
  /// Starts from the record of the running program.
  void Load();
  /// The button of the group that is on; -1 if none is.
  [[nodiscard]] int On(std::size_t group) const;
  void Choose(std::size_t group, std::size_t button);
  /// Takes the copy over into the running program and stores it. True if it was stored: the window closes.
  [[nodiscard]] bool cmdOK();

 private:
  const OptionWindow& design_;
  config::SettingsDoor& settings_;
  std::vector<std::int32_t> values_;  ///< one a group
};

}  // namespace kestrune::presenters
