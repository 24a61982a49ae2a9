#include "presenters/PresetSetup.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/Text.h"

namespace kestrune::presenters {

void PresetSetup::Load() {
  lines_ = {{.Text = kNoPreset, .Channel = 0}};
  for (int row = 1; row <= grid_.RowCount(); ++row) {
    const std::int16_t number = grid_.NumberAt(row);
    const std::string_view station = base::Trim(grid_.At(row)[radio::ChannelGrid::Station]);
    lines_.push_back({.Text = Presets::TextOf(number, station), .Channel = number});
  }
  for (int i = 0; i < Presets::kCount; ++i) {
    const std::string stored = presets_.Keys().Read(Presets::KeyOf(i));
    const double number = base::LeadingNumber(stored);
    const auto found = std::find_if(lines_.begin(), lines_.end(),
                                    [number](const Line& line) { return line.Channel == number; });
    selected_.at(static_cast<std::size_t>(i)) =
        found == lines_.end() ? 0 : static_cast<int>(found - lines_.begin());
  }
  Changed = false;
}

void PresetSetup::cboPreset_Click(int index, int line) {
  if (line < 0 || line >= static_cast<int>(lines_.size())) return;
  selected_.at(static_cast<std::size_t>(index)) = line;
}

void PresetSetup::cmdSave() {
  for (int i = 0; i < Presets::kCount; ++i) {
    const std::string& text = lines_.at(static_cast<std::size_t>(Selected(i))).Text;
    presets_.Store(i, text == kNoPreset ? std::string() : text);
  }
  Changed = false;
  presets_.LoadPresets();
  MainWindowToFront();
}

bool PresetSetup::Close() {
  if (!Changed) return true;
  switch (dialogs_.Show({.Title = "Save Preset Changes",
                         .Text = "You have made changes, do you want to save your changes first?",
                         .Icon = platform::MessageIcon::Question,
                         .Buttons = platform::MessageButtons::YesNoCancel})) {
    case platform::MessageAnswer::Cancel:
      return false;
    case platform::MessageAnswer::Yes:
      cmdSave();
      return true;
    default:
      return true;
  }
}

}  // namespace kestrune::presenters
