#pragma once

#include <string>

#include "config/formats/BitrateTable.h"
#include "config/settings/SettingsDoor.h"

namespace kestrune::presenters {

/// Positions 1 to 6.
[[nodiscard]] const config::BitrateTable& OggBitrates();

/// A slider, the label that shows its choice, and the text at its handle.
struct BitrateSlider {
  int Position = 0;  ///< 0, below the slider's minimum, for a bitrate that the table lacks
  std::string Label;
  std::string Tip;  ///< kbit/s
  bool Visible = true;
};

/// What the Ogg Vorbis option window shows.
struct OggControls {
  BitrateSlider NominalBitrate;  ///< sldrBitrate, lblBitrate
  BitrateSlider MinBitrate;      ///< sldrMinBitrate, lblMinBitrate
  BitrateSlider MaxBitrate;      ///< sldrMaxBitrate, lblMaxBitrate
  int Quality = 0;               ///< sldrQuality, 0 to 1000
  std::string QualityTip;
  bool chkVbr = false;
  bool chkQuality = false;
  bool chkVbrVisible = true;
  bool frmVbrVisible = true;
  bool frmQualityVisible = true;  ///< frmQuality and sldrQuality
};

/// The rules of the Ogg Vorbis option window. Methods named for a control are what the user does with it.
class OggOptions {
 public:
  /// The references must outlive this object.
  explicit OggOptions(config::SettingsDoor& settings);

  [[nodiscard]] const OggControls& Controls() const { return controls_; }
  /// Starts from the record of the running program.
  void Load();
  // The four sliders.
  void NominalBitrate(int position);
  void MinBitrate(int position);
  void MaxBitrate(int position);
  void Quality(int value);
  void chkVbr(bool checked);
  void chkQuality(bool checked);
  /// Takes the choices over into the running program and stores them. True if they were stored: the window closes.
  [[nodiscard]] bool cmdOK();

 private:
  void ShowVbr();
  void ShowQuality();

  config::SettingsDoor& settings_;
  OggControls controls_;
};

}  // namespace kestrune::presenters
