#pragma once

#include <string_view>

#include "presenters/OggOptions.h"
#include "windows/OptionDialog.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QSlider;

namespace kestrune::windows {

/// The options of the format Ogg Vorbis.
class frmFormatOgg final : public OptionDialog {
 public:
  /// `options` must outlive the window; the constructor loads them.
  explicit frmFormatOgg(presenters::OggOptions& options, QWidget* parent = nullptr);

  void Refresh();

 protected:
  bool cmdOK() override;

 private:
  struct Bitrate {
    QSlider* Slider = nullptr;
    QLabel* Label = nullptr;
  };
  using Move = void (presenters::OggOptions::*)(int position);

  void AddBitrates(QVBoxLayout& column);
  Bitrate AddBitrate(const char* slider, const char* label, std::string_view tip, Move slide);
  void AddQuality();
  static void Show(const Bitrate& controls, const presenters::BitrateSlider& slider);

  presenters::OggOptions& options_;
  QCheckBox* chkVbr_;
  QCheckBox* chkQuality_;
  QGroupBox* frmVbr_;
  QGroupBox* frmQuality_;
  QSlider* sldrQuality_ = nullptr;
  Bitrate nominal_;
  Bitrate least_;
  Bitrate most_;
};

}  // namespace kestrune::windows
