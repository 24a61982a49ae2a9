#include "presenters/MixerWindow.h"

#include <algorithm>

namespace kestrune::presenters {

using platform::Mixer;

namespace {

/// Twice as far each time: a device of few steps follows by one of them.
template <typename Move>
void MoveUntilFollowed(std::int32_t from, std::int32_t to, std::int32_t most, const Move& move) {
  for (std::int32_t way = to - from; way != 0; way *= 2) {
    const std::int32_t wanted = std::clamp(from + way, 0, most);
    if (move(wanted) != from || wanted == 0 || wanted == most) return;
  }
}

}  // namespace

void MixerWindow::Load() {
  Open();
}

void MixerWindow::Open() {
  openDevice_ = device_();
  mixer_.Open(openDevice_);
  ShowLines();
}

void MixerWindow::Unload() {
  mixer_.Close();
  ShowLines();
}

void MixerWindow::Update() {
  if (device_() != openDevice_) {
    Open();
  } else if (mixer_.Update()) {
    ShowLines();
  }
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

// A write may show that the device is gone, and its lines with it.
void MixerWindow::ShowLinesAndStayAt(std::int16_t line) {
  ShowLines();
  mixer_.SetCurrentLine(line);
}

void MixerWindow::slVolume_Scroll(std::size_t index, std::int32_t value) {
  const auto line = static_cast<std::int16_t>(index);
  mixer_.SetCurrentLine(line);
  mixer_.SetVolume(Mixer::kMaxVolume - value);
  ShowLinesAndStayAt(line);
}

void MixerWindow::slBalance_Scroll(std::size_t index, std::int16_t value) {
  const auto line = static_cast<std::int16_t>(index);
  mixer_.SetCurrentLine(line);
  mixer_.SetBalance(value);
  ShowLinesAndStayAt(line);
}

void MixerWindow::slVolume_Step(std::size_t index, std::int32_t value) {
  MoveUntilFollowed(columns_[index].slVolume, value, Mixer::kMaxVolume, [&](std::int32_t wanted) {
    slVolume_Scroll(index, wanted);
    return columns_[index].slVolume;
  });
}

void MixerWindow::slBalance_Step(std::size_t index, std::int16_t value) {
  MoveUntilFollowed(columns_[index].slBalance, value, Mixer::kMaxBalance, [&](std::int32_t wanted) {
    slBalance_Scroll(index, static_cast<std::int16_t>(wanted));
    return columns_[index].slBalance;
  });
}

// A card that records from one line only takes the selection from the others.
void MixerWindow::chSelect_MouseUp(std::size_t index, bool checked) {
  const std::int16_t current = mixer_.CurrentLine();
  mixer_.SetCurrentLine(static_cast<std::int16_t>(index));
  mixer_.SetSelected(checked);
  ShowLinesAndStayAt(current);
}

}  // namespace kestrune::presenters
