#include "presenters/OggOptions.h"

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>

#include "base/Numbers.h"

namespace kestrune::presenters {
namespace {

constexpr std::int16_t kKbit[] = {112, 128, 160, 192, 256, 320};
constexpr config::BitrateTable kBitrates(kKbit, 1);
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

const config::BitrateTable& OggBitrates() {
  return kBitrates;
}

OggOptions::OggOptions(config::SettingsDoor& settings) : settings_(settings) {
  Load();
}

void OggOptions::Load() {
  const config::FormatOGG& record = settings_.Current().FormatOGG;
  controls_ = {};
  LoadSlider(controls_.NominalBitrate, kNominal, record.Bitrate);
  LoadSlider(controls_.MaxBitrate, kMax, record.MaxBitrate);
  LoadSlider(controls_.MinBitrate, kMin, record.MinBitrate);
  chkVbr(record.VbrEnabled);
  chkQuality(record.QualityEnabled);
  // The field unchanged, although cmdOK divides by 100: a stored 4 opens at 4 of 1000.
  Quality(record.Quality);
}

void OggOptions::NominalBitrate(int position) {
  MoveSlider(controls_.NominalBitrate, kNominal, position);
}

void OggOptions::MinBitrate(int position) {
  MoveSlider(controls_.MinBitrate, kMin, position);
}

void OggOptions::MaxBitrate(int position) {
  MoveSlider(controls_.MaxBitrate, kMax, position);
}

void OggOptions::Quality(int value) {
  controls_.Quality = std::clamp(value, 0, kMostQuality);
  controls_.QualityTip = QualityText(controls_.Quality);
}

void OggOptions::chkVbr(bool checked) {
  controls_.chkVbr = checked;
  ShowVbr();
}

void OggOptions::chkQuality(bool checked) {
  controls_.chkQuality = checked;
  ShowQuality();
}

// Without variable bitrate the sliders are hidden, and their frame stays as it is.
void OggOptions::ShowVbr() {
  if (controls_.chkVbr) controls_.frmVbrVisible = true;
  controls_.MinBitrate.Visible = controls_.chkVbr;
  controls_.MaxBitrate.Visible = controls_.chkVbr;
}

void OggOptions::ShowQuality() {
  controls_.frmQualityVisible = controls_.chkQuality;
  controls_.chkVbrVisible = !controls_.chkQuality;
  controls_.NominalBitrate.Visible = !controls_.chkQuality;
  if (controls_.chkQuality) {
    controls_.frmVbrVisible = false;
    controls_.MinBitrate.Visible = false;
    controls_.MaxBitrate.Visible = false;
  } else {
    ShowVbr();
  }
}

bool OggOptions::cmdOK() {
  config::Settings wished = settings_.Current();
  config::FormatOGG& record = wished.FormatOGG;
  record.Bitrate = kBitrates.Bitrate(controls_.NominalBitrate.Position);
  record.MaxBitrate = kBitrates.Bitrate(controls_.MaxBitrate.Position);
  record.MinBitrate = kBitrates.Bitrate(controls_.MinBitrate.Position);
  record.QualityEnabled = controls_.chkQuality;
  record.Quality =
      base::ToInt16(static_cast<double>(controls_.Quality) / kQualityUnit).value_or(record.Quality);
  record.VbrEnabled = controls_.chkVbr;
  return settings_.ChangeFormat(wished, "OGG").Saved;
}

}  // namespace kestrune::presenters
