#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/Dialogs.h"
#include "presenters/Presets.h"
#include "radio/channels/ChannelGrid.h"

namespace kestrune::presenters {

/// The choice of a channel for each preset button: twelve lists with the same lines.
class PresetSetup {
 public:
  static constexpr const char* kNoPreset = "No Preset";

  struct Line {
    std::string Text;  ///< number, " - " and station, as it is saved
    std::int16_t Channel = 0;
  };

  /// All must outlive the object.
  PresetSetup(const radio::ChannelGrid& grid, Presets& presets, platform::Dialogs& dialogs)
      : grid_(grid), presets_(presets), dialogs_(dialogs) {}

  /// Both commands call it before the window closes.
  std::function<void()> MainWindowToFront = [] {};

  /// Takes the channels in the grid's present order, and each button's stored choice.
  void Load();

  [[nodiscard]] const std::vector<Line>& Lines() const { return lines_; }
  /// The line that list `index` (0 to 11) shows.
  [[nodiscard]] int Selected(int index) const { return selected_.at(static_cast<std::size_t>(index)); }
  /// The user's choice in one list. It does not count as a change that a close would ask about.
  void cboPreset_Click(int index, int line);

  /// Stores all choices and shows them on the buttons. The window closes after it, as it does after cmdCancel.
  void cmdSave();
  void cmdCancel() { MainWindowToFront(); }
  /// A close by the user or by the program; false keeps the window open.
  [[nodiscard]] bool Close();

  /// Whether a close asks first. No choice sets it, so the close box leaves without saving and without a word.
  bool Changed = false;

 private:
  const radio::ChannelGrid& grid_;
  Presets& presets_;
  platform::Dialogs& dialogs_;
  std::vector<Line> lines_;
  std::array<int, Presets::kCount> selected_{};
};

}  // namespace kestrune::presenters
