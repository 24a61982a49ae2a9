#include "config/settings/SettingKeys.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <type_traits>
#include <utility>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "base/Text.h"
#include "config/formats/FormatTable.h"

namespace kestrune::config {
namespace {

template <typename Field>
struct FieldText;

template <>
struct FieldText<std::int16_t> {
  static constexpr SettingType kType = SettingType::Int16;
  static std::string Print(std::int16_t value) { return std::to_string(value); }
  static std::optional<std::int16_t> Parse(std::string_view text) { return base::ToInt16(text); }
};

template <>
struct FieldText<std::int32_t> {
  static constexpr SettingType kType = SettingType::Int32;
  static std::string Print(std::int32_t value) { return std::to_string(value); }
  static std::optional<std::int32_t> Parse(std::string_view text) { return base::ToInt32(text); }
};

template <>
struct FieldText<bool> {
  static constexpr SettingType kType = SettingType::Bool;
  static std::string Print(bool value) { return base::BoolText(value); }
  static std::optional<bool> Parse(std::string_view text) { return base::ToBool(text); }
};

template <>
struct FieldText<std::string> {
  static constexpr SettingType kType = SettingType::Text;
  static std::string Print(const std::string& value) { return value; }
  static std::optional<std::string> Parse(std::string_view text) { return std::string(text); }
};

/// The field at the end of a way of members.
template <auto... Members>
auto& At(auto& settings) {
  // clang-format off
  return (settings .* ... .* Members);
  // clang-format on
}

/// A row of the table: the key and the way to its field.
template <auto... Members>
constexpr SettingKey Row(std::string_view key) {
  using Field = std::remove_cvref_t<decltype(At<Members...>(std::declval<Settings&>()))>;
  return {key, FieldText<Field>::kType,
          [](const Settings& settings) { return FieldText<Field>::Print(At<Members...>(settings)); },
          [](Settings& settings, std::string_view text) {
            const std::optional<Field> value = FieldText<Field>::Parse(text);
            if (value) At<Members...>(settings) = *value;
            return value.has_value();
          }};
}

constexpr SettingKey kSettingKeys[] = {
    Row<&Settings::Channel>("Channel"),
    Row<&Settings::SievanceGrab>("SievanceGrab"),
    Row<&Settings::SievanceKill>("SievanceKill"),
    Row<&Settings::MinSongLength>("MinSongLength"),
    Row<&Settings::MaxSongLength>("MaxSongLength"),
    Row<&Settings::SongDelay>("SongDelay"),
    Row<&Settings::FileDir>("FileDir"),
    Row<&Settings::FileFormat>("FileFormat"),
    Row<&Settings::RadioOnAtExit>("RadioOnAtExit"),
    Row<&Settings::FilenameFormat>("FilenameFormat"),
    Row<&Settings::SaveDuplicates>("SaveDuplicates"),
    Row<&Settings::TaskBarMinimized>("TaskBarMinimized"),
    Row<&Settings::Integrel>("Integrel"),
    Row<&Settings::InputDevice>("InputDevice"),
    Row<&Settings::InputDeviceId>("InputDeviceId"),
    Row<&Settings::AGCEnabled>("AGCEnabled"),
    Row<&Settings::AGCLowLevel>("AGCLowLevel"),
    Row<&Settings::AGCHighLevel>("AGCHighLevel"),
    Row<&Settings::AGCAttackTime>("AGCAttackTime"),
    Row<&Settings::PortNum>("PortNum"),
    Row<&Settings::Cleftune>("Cleftune"),
    Row<&Settings::CheckUpdatesAtStartup>("CheckUpdatesAtStartup"),

    Row<&Settings::Format726, &Format726::Bits>("726_Bits"),
    Row<&Settings::Format726, &Format726::Frequency>("726_Frequency"),

    Row<&Settings::FormatMP3, &FormatMP3::ATHControl>("MP3_ATHControl"),
    Row<&Settings::FormatMP3, &FormatMP3::Bitrate>("MP3_Bitrate"),
    // The bit reservoir has always been stored under this bare prefix.
    Row<&Settings::FormatMP3, &FormatMP3::BitReservoir>("MP3_"),
    Row<&Settings::FormatMP3, &FormatMP3::Channels>("MP3_Channels"),
    Row<&Settings::FormatMP3, &FormatMP3::ComplyISO>("MP3_ComplyISO"),
    Row<&Settings::FormatMP3, &FormatMP3::DeEmphasis>("MP3_DeEmphasis"),
    Row<&Settings::FormatMP3, &FormatMP3::DifferentBlockTypes>("MP3_DifferentBlockTypes"),
    Row<&Settings::FormatMP3, &FormatMP3::Frequency>("MP3_Frequency"),
    Row<&Settings::FormatMP3, &FormatMP3::HighPassFilter>("MP3_HighPassFilter"),
    Row<&Settings::FormatMP3, &FormatMP3::HighPassFilterFreq>("MP3_HighPassFilterFreq"),
    Row<&Settings::FormatMP3, &FormatMP3::HighPassFilterWidth>("MP3_HighPassFilterWidth"),
    Row<&Settings::FormatMP3, &FormatMP3::IncludeCRC>("MP3_IncludeCRC"),
    Row<&Settings::FormatMP3, &FormatMP3::LowPassFilter>("MP3_LowPassFilter"),
    Row<&Settings::FormatMP3, &FormatMP3::LowPassFilterFreq>("MP3_LowPassFilterFreq"),
    Row<&Settings::FormatMP3, &FormatMP3::LowPassFilterWidth>("MP3_LowPassFilterWidth"),
    Row<&Settings::FormatMP3, &FormatMP3::Quality>("MP3_Quality"),
    Row<&Settings::FormatMP3, &FormatMP3::ShortBlocks>("MP3_ShortBlocks"),
    Row<&Settings::FormatMP3, &FormatMP3::TypeStereo>("MP3_TypeStereo"),
    Row<&Settings::FormatMP3, &FormatMP3::VBRCodingMethod>("MP3_VBRCodingMethod"),
    Row<&Settings::FormatMP3, &FormatMP3::VBREnforceMinBitRate>("MP3_VBREnforceMinBitRate"),
    Row<&Settings::FormatMP3, &FormatMP3::VBRHeader>("MP3_VBRHeader"),
    Row<&Settings::FormatMP3, &FormatMP3::VBRMaxBitrate>("MP3_VBRMaxBitrate"),
    Row<&Settings::FormatMP3, &FormatMP3::VBRQuality>("MP3_VBRQuality"),
    Row<&Settings::FormatMP3, &FormatMP3::VBRTargetBitrate>("MP3_VBRTargetBitrate"),

    Row<&Settings::FormatOGG, &FormatOGG::Bitrate>("OGG_Bitrate"),
    Row<&Settings::FormatOGG, &FormatOGG::MaxBitrate>("OGG_MaxBitrate"),
    Row<&Settings::FormatOGG, &FormatOGG::MinBitrate>("OGG_MinBitrate"),
    Row<&Settings::FormatOGG, &FormatOGG::Quality>("OGG_Quality"),
    Row<&Settings::FormatOGG, &FormatOGG::QualityEnabled>("OGG_QualityEnabled"),
    Row<&Settings::FormatOGG, &FormatOGG::VbrEnabled>("OGG_VbrEnabled"),

    Row<&Settings::FormatRAW, &FormatRAW::Channels>("RAW_Channels"),
    Row<&Settings::FormatRAW, &FormatRAW::Compression>("RAW_Compression"),
    Row<&Settings::FormatRAW, &FormatRAW::Frequency>("RAW_Frequency"),

    Row<&Settings::FormatVOX, &FormatVOX::Frequency>("VOX_Frequency"),

    Row<&Settings::FormatWAV, &FormatWAV::Bits>("WAV_Bits"),
    Row<&Settings::FormatWAV, &FormatWAV::Channels>("WAV_Channels"),
    Row<&Settings::FormatWAV, &FormatWAV::Frequency>("WAV_Frequency"),

    Row<&Settings::LegalAgreement>("LegalAgreement"),
    Row<&Settings::ChannelListing>("ChannelListing"),
    Row<&Settings::RecordLog>("RecordLog"),
    Row<&Settings::KestruneNow>("KestruneNow"),
};

}  // namespace

std::span<const SettingKey> SettingKeys() {
  return kSettingKeys;
}

std::span<const SettingKey> FormatKeys(std::string_view fileFormat) {
  const FormatRow* const row = FindFormat(fileFormat);
  if (row == nullptr) return {};
  const auto ofFormat = [&](const SettingKey& key) { return key.Key.starts_with(row->KeyPrefix); };
  const auto* first = std::find_if(std::begin(kSettingKeys), std::end(kSettingKeys), ofFormat);
  return {first, std::find_if_not(first, std::end(kSettingKeys), ofFormat)};
}

const SettingKey* FindSettingKey(std::string_view key) {
  for (const SettingKey& row : kSettingKeys) {
    if (base::EqualsNoCase(row.Key, key)) return &row;
  }
  return nullptr;
}

void LoadSettings(const SettingsSection& section, const platform::Environment& environment,
                  Settings& settings) {
  const Settings defaults;
  for (const SettingKey& key : kSettingKeys) {
    const std::string fallback = key.Text(defaults);
    if (!key.Read(settings, section.Text(key.Key, fallback))) base::Ignored(key.Read(settings, fallback));
  }
  WriteFileDir(settings, settings.FileDir == defaults.FileDir ? environment.DefaultRecordingFolder()
                                                              : settings.FileDir);
}

bool SaveSetting(const SettingsSection& section, const Settings& settings, std::string_view key) {
  const SettingKey* row = FindSettingKey(key);
  return row != nullptr && section.SaveText(row->Key, row->Text(settings));
}

bool SaveSettings(const SettingsSection& section, const Settings& settings,
                  std::span<const SettingKey> keys) {
  bool saved = true;
  for (const SettingKey& key : keys) {
    if (!section.SaveText(key.Key, key.Text(settings))) saved = false;
  }
  return saved;
}

}  // namespace kestrune::config
