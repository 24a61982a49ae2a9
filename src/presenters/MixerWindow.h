#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "platform/Mixer.h"

namespace kestrune::presenters {

/// One column of the mixer's window: a recording line, as it is shown.
struct MixerColumn {
  std::string Label;
  bool slVolumeVisible = false;
  std::int32_t slVolume = 0;  ///< from the top: 0 is loud
  bool slBalanceVisible = false;
  std::int16_t slBalance = 0;
  bool chSelectVisible = false;
  bool chSelect = false;
};

/// The rules of the record mixer: a thin view on the mixer. What is shown is always what the device has.
class MixerWindow {
 public:
  static constexpr std::size_t kColumns = 8;

  /// The mixer must outlive the object. `device` returns the id of the recording device, at any time.
  MixerWindow(platform::Mixer& mixer, std::function<std::string()> device)
      : mixer_(mixer), device_(std::move(device)) {}

  /// The window opens.
  void Load();
  /// The window has closed.
  void Unload();
  /// Takes in what was changed elsewhere, the choice of the recording device among it. To be called several times a
  /// second while loaded.
  void Update();

  void slVolume_Scroll(std::size_t index, std::int32_t value);
  void slBalance_Scroll(std::size_t index, std::int16_t value);
  /// A key or the wheel has moved the slider to the value. A device of few steps rounds a small move away, so the
  /// move goes on in its direction until the device follows, or to the end.
  void slVolume_Step(std::size_t index, std::int32_t value);
  void slBalance_Step(std::size_t index, std::int16_t value);
  void chSelect_MouseUp(std::size_t index, bool checked);

  /// Index of the last line shown; -1 without a line.
  [[nodiscard]] std::int16_t LastLine() const { return lastLine_; }
  /// The line that was found selected last.
  [[nodiscard]] std::int16_t SelectedLine() const { return selectedLine_; }
  /// Columns after the last line show nothing.
  [[nodiscard]] const MixerColumn& Column(std::size_t index) const { return columns_[index]; }

 private:
  void Open();
  void ShowLines();
  void ShowLinesAndStayAt(std::int16_t line);

  platform::Mixer& mixer_;
  std::function<std::string()> device_;
  std::string openDevice_;
  std::array<MixerColumn, kColumns> columns_;
  std::int16_t lastLine_ = -1;
  std::int16_t selectedLine_ = 0;
};

}  // namespace kestrune::presenters
