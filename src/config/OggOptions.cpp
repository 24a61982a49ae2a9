#include "config/OggOptions.h"

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "config/SettingKeys.h"

namespace kestrune::config {
namespace {

constexpr std::int16_t kKbit[] = {112, 128, 160, 192, 256, 320};
constexpr BitrateTable kBitrates(kKbit, 1);
constexpr int kMostQuality = 1000;
constexpr int kQualityUnit = 100;

constexpr std::string_view kNominal = "nominal";
constexpr std::string_view kMin = "min";
constexpr std::string_view kMax = "max";

void ShowBitrate(BitrateSlider& slider, std::string_view which, std::int16_t bitrate) {
  slider.Label = fmt::format("Current {} bitrate: {} kbit", which, bitrate);
  slider.Tip = std::to_string(bitrate);
}

void LoadSlider(BitrateSlider& slider, std::string_view which, std::int16_t bitrate) {
  slider.Position = kBitrates.Position(bitrate);
  ShowBitrate(slider, which, bitrate);
}

void MoveSlider(BitrateSlider& slider, std::string_view which, int position) {
  slider.Position = position;
  ShowBitrate(slider, which, kBitrates.Bitrate(position));
}

std::string QualityText(int value) {
  return base::SingleText(static_cast<float>(value) / kQualityUnit);
}

}  // namespace

const BitrateTable& OggBitrates() {
  return kBitrates;
}

OggOptions::OggOptions(Settings& settings, const SettingsSection& section)
    : settings_(settings), section_(section) {
  Load();
}

void OggOptions::Load() {
  const FormatOGG& record = settings_.FormatOGG;
  controls_ = {};
  LoadSlider(controls_.sldrBitrate, kNominal, record.Bitrate);
  LoadSlider(controls_.sldrMaxBitrate, kMax, record.MaxBitrate);
  LoadSlider(controls_.sldrMinBitrate, kMin, record.MinBitrate);
  chkVbr(record.VbrEnabled);
  chkQuality(record.QualityEnabled);
  // The field as it stands, though cmdOK divides by 100: a stored 4 opens at 4 of 1000.
  sldrQuality(record.Quality);
}

void OggOptions::sldrBitrate(int position) {
  MoveSlider(controls_.sldrBitrate, kNominal, position);
}

void OggOptions::sldrMinBitrate(int position) {
  MoveSlider(controls_.sldrMinBitrate, kMin, position);
}

void OggOptions::sldrMaxBitrate(int position) {
  MoveSlider(controls_.sldrMaxBitrate, kMax, position);
}

void OggOptions::sldrQuality(int value) {
  controls_.sldrQuality = std::clamp(value, 0, kMostQuality);
  controls_.QualityTip = QualityText(controls_.sldrQuality);
}

void OggOptions::chkVbr(bool checked) {
  controls_.chkVbr = checked;
  ShowVbr();
}

void OggOptions::chkQuality(bool checked) {
  controls_.chkQuality = checked;
  ShowQuality();
}

// Without variable bitrate the sliders go, and their frame stays as it is.
void OggOptions::ShowVbr() {
  if (controls_.chkVbr) controls_.frmVbrVisible = true;
  controls_.sldrMinBitrate.Visible = controls_.chkVbr;
  controls_.sldrMaxBitrate.Visible = controls_.chkVbr;
}

void OggOptions::ShowQuality() {
  controls_.frmQualityVisible = controls_.chkQuality;
  controls_.chkVbrVisible = !controls_.chkQuality;
  controls_.sldrBitrate.Visible = !controls_.chkQuality;
  if (controls_.chkQuality) {
    controls_.frmVbrVisible = false;
    controls_.sldrMinBitrate.Visible = false;
    controls_.sldrMaxBitrate.Visible = false;
  } else {
    ShowVbr();
  }
}

void OggOptions::cmdOK() {
  FormatOGG record = settings_.FormatOGG;
  record.Bitrate = kBitrates.Bitrate(controls_.sldrBitrate.Position);
  record.MaxBitrate = kBitrates.Bitrate(controls_.sldrMaxBitrate.Position);
  record.MinBitrate = kBitrates.Bitrate(controls_.sldrMinBitrate.Position);
  record.QualityEnabled = controls_.chkQuality;
  record.Quality =
      base::ToInt16(static_cast<double>(controls_.sldrQuality) / kQualityUnit).value_or(record.Quality);
  record.VbrEnabled = controls_.chkVbr;
  settings_.FormatOGG = record;
  base::Ignored(SaveSettings(section_, settings_, FormatKeys("OGG")));
}

}  // namespace kestrune::config
