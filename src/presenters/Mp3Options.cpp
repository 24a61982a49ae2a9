#include "presenters/Mp3Options.h"

#include <algorithm>
#include <initializer_list>
#include <optional>

#include <fmt/format.h>

#include "base/Numbers.h"

namespace kestrune::presenters {
namespace {

constexpr std::int16_t kKbit[] = {8, 16, 24, 32, 48, 56, 64, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr config::BitrateTable kBitrates(kKbit, 0);
constexpr int kMostQuality = 9;

// Rows of the coding method; the field is the row minus 1.
constexpr int kDisabled = 0;
constexpr int kAverage = 5;

constexpr std::string_view kFilterNames[] = {"txtHFiltF", "txtHFiltW", "txtLFiltF", "txtLFiltW"};
constexpr std::int16_t config::FormatMP3::*kFilterFields[] = {
    &config::FormatMP3::HighPassFilterFreq, &config::FormatMP3::HighPassFilterWidth,
    &config::FormatMP3::LowPassFilterFreq, &config::FormatMP3::LowPassFilterWidth};

/// A list whose rows stand for `first`, `first` + 1 and so on.
ChoiceList Numbered(std::int32_t first, std::initializer_list<const char*> texts) {
  ChoiceList list;
  for (const char* text : texts) list.Rows.push_back({text, first++});
  return list;
}

ChoiceList Frequencies() {
  ChoiceList list;
  for (const std::int32_t rate : {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000}) {
    list.Rows.push_back({fmt::format("{},{:03}", rate / 1000, rate % 1000), rate});
  }
  return list;
}

std::string BitrateText(int position) {
  return fmt::format("Current bitrate: {} kbit", kBitrates.Bitrate(position));
}

std::int16_t Held(std::int16_t value, const SpinRange& range) {
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(value, range.Least, range.Most));
}

void TakeTyped(std::int16_t& field, const SpinRange& range, std::string_view text) {
  const std::optional<std::int16_t> value = base::ToInt16(text);
  if (value) field = Held(*value, range);
}

template <typename Field>
void TakeChosen(Field& field, const ChoiceList& list) {
  field = static_cast<Field>(list.Value().value_or(field));
}

}  // namespace

const config::BitrateTable& Mp3Bitrates() {
  return kBitrates;
}

Mp3Options::Mp3Options(config::SettingsDoor& settings) : settings_(settings) {
  Load();
}

void Mp3Options::Load() {
  record_ = settings_.Current().FormatMP3;
  controls_ = {};
  fieldToMend_ = {};

  EncoderQuality(record_.Quality);
  CurrentBitrate(kBitrates.Position(record_.Bitrate));
  controls_.cboTypeStereo = Numbered(1, {"Simple", "Joint", "Forced Joint", "Dual Channel"});
  controls_.cboTypeStereo.SelectValue(record_.TypeStereo);
  controls_.cboFrequency = Frequencies();
  controls_.cboFrequency.SelectValue(record_.Frequency);
  MaxVBRBitrate(kBitrates.Position(record_.VBRMaxBitrate));
  record_.VBRQuality = Held(record_.VBRQuality, kVbrQualityRange);
  controls_.cboCodingMethod = Numbered(-1, {"Disabled", "Default", "Old", "New", "MTRH", "ABR"});
  controls_.cboCodingMethod.SelectValue(record_.VBRCodingMethod);
  record_.VBRTargetBitrate = Held(record_.VBRTargetBitrate, kTargetBitrateRange);
  ShowSpinValues();
  controls_.cboChannels = Numbered(1, {"Mono", "Stereo"});
  controls_.cboChannels.SelectValue(record_.Channels);
  controls_.chkWriteVBRHeader = record_.VBRHeader;
  controls_.chkEnforceVBRMinBitrate = record_.VBREnforceMinBitRate;
  for (std::size_t i = 0; i < kFilterNumbers; ++i) {
    controls_.Filters[i].Text = std::to_string(record_.*kFilterFields[i]);
  }
  controls_.cboATHControl = Numbered(0, {"Default", "ATH Only", "Disable ATH", "Short Block"});
  controls_.cboATHControl.SelectValue(record_.ATHControl);
  controls_.cboDeEmphasis = Numbered(0, {"Disabled", "0/15 ms", "citt j.17"});
  controls_.cboDeEmphasis.SelectValue(record_.DeEmphasis);
  controls_.chkCRCChecksums = record_.IncludeCRC;
  controls_.chkDiffBlockTypes = record_.DifferentBlockTypes;
  controls_.chkBitReservoir = record_.BitReservoir;
  controls_.chkShortBlocks = record_.ShortBlocks;
  controls_.chkISOComply = record_.ComplyISO;

  cboCodingMethod(controls_.cboCodingMethod.Row);
  chkHFilt(record_.HighPassFilter);
  chkLFilt(record_.LowPassFilter);
}

// A method that is not on the list leaves everything visible.
void Mp3Options::cboCodingMethod(int row) {
  controls_.cboCodingMethod.Select(row);
  row = controls_.cboCodingMethod.Row;
  if (row < 0) return;
  const bool enabled = row != kDisabled;
  controls_.VbrQualityVisible = enabled && row != kAverage;
  controls_.txtVbrQ.Enabled = controls_.VbrQualityVisible;
  controls_.AbrVisible = row == kAverage;
  controls_.txtABR.Enabled = controls_.AbrVisible;
  controls_.VbrVisible = enabled;
}

void Mp3Options::CurrentBitrate(int position) {
  controls_.CurrentBitrate = position;
  controls_.lblCurrentBitrate = BitrateText(position);
}

void Mp3Options::EncoderQuality(int value) {
  controls_.EncoderQuality = std::clamp(value, 0, kMostQuality);
}

void Mp3Options::MaxVBRBitrate(int position) {
  controls_.MaxVBRBitrate = position;
  controls_.lblMaxVBRBitrate = BitrateText(position);
}

void Mp3Options::txtVbrQ(std::string_view text) {
  controls_.txtVbrQ.Text = text;
  TakeTyped(record_.VBRQuality, kVbrQualityRange, text);
}

void Mp3Options::txtABR(std::string_view text) {
  controls_.txtABR.Text = text;
  TakeTyped(record_.VBRTargetBitrate, kTargetBitrateRange, text);
}

void Mp3Options::ShowSpinValues() {
  controls_.txtVbrQ.Text = std::to_string(record_.VBRQuality);
  controls_.txtABR.Text = std::to_string(record_.VBRTargetBitrate);
}

void Mp3Options::StepVbrQ(int direction) {
  txtVbrQ(Stepped(std::to_string(record_.VBRQuality), kVbrQualityRange, direction));
}

void Mp3Options::StepABR(int direction) {
  txtABR(Stepped(std::to_string(record_.VBRTargetBitrate), kTargetBitrateRange, direction));
}

void Mp3Options::txtFilter(FilterNumber number, std::string_view text) {
  Filter(number).Text = text;
}

void Mp3Options::StepFilter(FilterNumber number, int direction) {
  txtFilter(number, Stepped(Filter(number).Text, kFilterRange, direction));
}

void Mp3Options::chkHFilt(bool checked) {
  controls_.chkHFilt = checked;
  controls_.HighPassVisible = checked;
  Filter(FilterNumber::HFiltF).Enabled = checked;
  Filter(FilterNumber::HFiltW).Enabled = checked;
}

void Mp3Options::chkLFilt(bool checked) {
  controls_.chkLFilt = checked;
  controls_.LowPassVisible = checked;
  Filter(FilterNumber::LFiltF).Enabled = checked;
  Filter(FilterNumber::LFiltW).Enabled = checked;
}

bool Mp3Options::ReadFilters(config::FormatMP3& record) {
  for (std::size_t i = 0; i < kFilterNumbers; ++i) {
    const std::optional<std::int16_t> value = base::ToInt16(controls_.Filters[i].Text);
    if (!value) {
      fieldToMend_ = kFilterNames[i];
      controls_.Filters[i].Enabled = true;
      return false;
    }
    record.*kFilterFields[i] = *value;
  }
  fieldToMend_ = {};
  return true;
}

bool Mp3Options::cmdOK() {
  config::FormatMP3 record = record_;
  if (!ReadFilters(record)) return false;
  TakeChosen(record.TypeStereo, controls_.cboTypeStereo);
  TakeChosen(record.Channels, controls_.cboChannels);
  TakeChosen(record.VBRCodingMethod, controls_.cboCodingMethod);
  TakeChosen(record.Frequency, controls_.cboFrequency);
  TakeChosen(record.ATHControl, controls_.cboATHControl);
  TakeChosen(record.DeEmphasis, controls_.cboDeEmphasis);
  record.Bitrate = kBitrates.Bitrate(controls_.CurrentBitrate);
  record.VBRMaxBitrate = kBitrates.Bitrate(controls_.MaxVBRBitrate);
  record.Quality = static_cast<std::int16_t>(controls_.EncoderQuality);
  record.VBRHeader = controls_.chkWriteVBRHeader;
  record.VBREnforceMinBitRate = controls_.chkEnforceVBRMinBitrate;
  record.IncludeCRC = controls_.chkCRCChecksums;
  record.ComplyISO = controls_.chkISOComply;
  record.DifferentBlockTypes = controls_.chkDiffBlockTypes;
  record.ShortBlocks = controls_.chkShortBlocks;
  record.BitReservoir = controls_.chkBitReservoir;
  record.HighPassFilter = controls_.chkHFilt;
  record.LowPassFilter = controls_.chkLFilt;
  record_ = record;
  config::Settings wished = settings_.Current();
  wished.FormatMP3 = record;
  return settings_.ChangeFormat(wished, "MP3").Saved;
}

}  // namespace kestrune::presenters
