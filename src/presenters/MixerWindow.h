#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

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

/// The rules of the record mixer: a thin view on the mixer, whose lines say what is shown, not the user's hand.
class MixerWindow {
 public:
  static constexpr std::size_t kColumns = 8;

  /// The mixer must outlive the object.
  explicit MixerWindow(platform::Mixer& mixer) : mixer_(mixer) {}

  /// The window opens, for a recording device by its id.
  void Load(const std::string& device);
  /// The window has closed.
  void Unload();
  /// Takes in what was changed elsewhere. To be called several times a second while loaded.
  void Update();

  void slVolume_Scroll(std::size_t index, std::int32_t value);
  void slBalance_Scroll(std::size_t index, std::int16_t value);
  void chSelect_MouseUp(std::size_t index, bool checked);

  /// Index of the last line shown; -1 without a line.
  [[nodiscard]] std::int16_t LastLine() const { return lastLine_; }
  /// The line that was found selected last.
  [[nodiscard]] std::int16_t SelectedLine() const { return selectedLine_; }
  /// Columns behind the last line show nothing.
  [[nodiscard]] const MixerColumn& Column(std::size_t index) const { return columns_[index]; }

 private:
  void ShowLines();

  platform::Mixer& mixer_;
  std::array<MixerColumn, kColumns> columns_;
  std::int16_t lastLine_ = -1;
  std::int16_t selectedLine_ = 0;
};

}  // namespace kestrune::presenters
