#include "presenters/MixerWindow.h"

#include <algorithm>

namespace kestrune::presenters {

using platform::Mixer;

void MixerWindow::Load(const std::string& device) {
  mixer_.Open(device);
  ShowLines();
}

void MixerWindow::Unload() {
  mixer_.Close();
  ShowLines();
}

void MixerWindow::Update() {
  if (mixer_.Update()) ShowLines();
}

void MixerWindow::ShowLines() {
  lastLine_ = std::min<std::int16_t>(mixer_.LineCount(), kColumns - 1);
  columns_ = {};
  for (std::int16_t line = 0; line <= lastLine_; ++line) {
    MixerColumn& column = columns_[static_cast<std::size_t>(line)];
    mixer_.SetCurrentLine(line);
    column.Label = mixer_.LineName();
    column.slVolumeVisible = mixer_.HasVolume();
    column.slVolume = Mixer::kMaxVolume - mixer_.Volume();
    column.slBalanceVisible = mixer_.HasBalance();
    column.slBalance = mixer_.Balance();
    column.chSelectVisible = mixer_.CanSelect();
    column.chSelect = mixer_.Selected();
    if (column.chSelect) selectedLine_ = line;
  }
}

void MixerWindow::slVolume_Scroll(std::size_t index, std::int32_t value) {
  mixer_.SetCurrentLine(static_cast<std::int16_t>(index));
  mixer_.SetVolume(Mixer::kMaxVolume - value);
  columns_[index].slVolume = Mixer::kMaxVolume - mixer_.Volume();
}

void MixerWindow::slBalance_Scroll(std::size_t index, std::int16_t value) {
  mixer_.SetCurrentLine(static_cast<std::int16_t>(index));
  mixer_.SetBalance(value);
  columns_[index].slBalance = mixer_.Balance();
}

// A card that records from one line only takes the selection from the others.
void MixerWindow::chSelect_MouseUp(std::size_t index, bool checked) {
  const std::int16_t current = mixer_.CurrentLine();
  mixer_.SetCurrentLine(static_cast<std::int16_t>(index));
  mixer_.SetSelected(checked);
  for (std::int16_t line = 0; line <= lastLine_; ++line) {
    mixer_.SetCurrentLine(line);
    columns_[static_cast<std::size_t>(line)].chSelect = mixer_.Selected();
    if (mixer_.Selected()) selectedLine_ = line;
  }
  mixer_.SetCurrentLine(current);
}

}  // namespace kestrune::presenters
