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

template <>
struct FieldText<CutPlacement> {
  static constexpr SettingType kType = SettingType::CutPlacement;
  static std::string Print(CutPlacement value) { return std::string(NameOf(value)); }
  static std::optional<CutPlacement> Parse(std::string_view text) { return ToCutPlacement(text); }
};

/// The field that the members lead to, one inside the other.
template <auto... Members>
auto& At(auto& settings) {
  // clang-format off
  return (settings .* ... .* Members);
  // clang-format on
}

/// A row of the table: the key and the members that lead to its field.
template <auto... Members>
constexpr SettingKey Row(std::string_view key) {
  using Field = std::remove_cvref_t<decltype(At<Members...>(std::declval<Settings&>()))>;
  return {key, FieldText<Field>::kType,
          [](const Settings& settings) { return FieldText<Field>::Print(At<Members...>(settings)); },
          [](Settings& settings, std::string_view text) {
            const std::optional<Field> value = FieldText<Field>::Parse(text);
            if (value) At<Members...>(settings) = *value;
            return value.has_value();
          },
          [](Settings& to, const Settings& from) { At<Members...>(to) = At<Members...>(from); }};
}

/// A row for a field of a format record.
template <auto... Members>
constexpr SettingKey Record(std::string_view key) {
  return Row<Members...>(key).With(SettingEffect::FormatRecord);
}

constexpr SettingKey kSettingKeys[] = {
    Row<&Settings::Channel>("Channel").StoredAtExit().Following(
        "it is the tuned channel, which the command tune changes"),
    Row<&Settings::SievanceGrab>("SievanceGrab").CheckedBy(CheckSievanceGrab).StoredAtExit(),
    Row<&Settings::SievanceKill>("SievanceKill").CheckedBy(CheckSievanceKill).StoredAtExit(),
    Row<&Settings::MinSongLength>("MinSongLength").CheckedBy(CheckSongLengths),
    Row<&Settings::MaxSongLength>("MaxSongLength").CheckedBy(CheckSongLengths),
    Row<&Settings::SongDelay>("SongDelay").CheckedBy(CheckSongDelay),
    Row<&Settings::FileDir>("FileDir").CheckedBy(CheckFileDir).With(SettingEffect::Folder),
    Row<&Settings::FileFormat>("FileFormat").CheckedBy(CheckFileFormat).With(SettingEffect::FileFormat),
    Row<&Settings::RadioOnAtExit>("RadioOnAtExit"),
    Row<&Settings::FilenameFormat>("FilenameFormat").CheckedBy(CheckFilenameFormat),
    Row<&Settings::SaveDuplicates>("SaveDuplicates"),
    Row<&Settings::TaskBarMinimized>("TaskBarMinimized"),
    Row<&Settings::Integrel>("Integrel"),
    Row<&Settings::InputDevice>("InputDevice").With(SettingEffect::InputDevice),
    Row<&Settings::InputDeviceId>("InputDeviceId").Following("it follows InputDevice"),
    Row<&Settings::AGCEnabled>("AGCEnabled"),
    Row<&Settings::AGCLowLevel>("AGCLowLevel"),
    Row<&Settings::AGCHighLevel>("AGCHighLevel"),
    Row<&Settings::AGCAttackTime>("AGCAttackTime"),
    Row<&Settings::PortNum>("PortNum").StoredAtExit().Following(
        "it is the port on which the radio was found, which the option /port changes"),
    Row<&Settings::Cleftune>("Cleftune"),
    Row<&Settings::CheckUpdatesAtStartup>("CheckUpdatesAtStartup"),
    Row<&Settings::Watch>("Watch"),
    Row<&Settings::IdleCaptureMinutes>("IdleCaptureMinutes").CheckedBy(CheckIdleCaptureMinutes),
    Row<&Settings::CutPlacement>("CutPlacement"),
    Row<&Settings::CutOverlap>("CutOverlap").CheckedBy(CheckCutOverlap),
    Row<&Settings::Hints>("Hints"),
    Row<&Settings::FollowHints>("FollowHints"),
    Row<&Settings::NotifySongs>("NotifySongs"),
    Row<&Settings::NotifyEvents>("NotifyEvents"),
    Row<&Settings::NotifyProblems>("NotifyProblems"),
    Row<&Settings::NotifyHints>("NotifyHints"),
    Row<&Settings::ShelfFolder>("ShelfFolder").CheckedBy(CheckShelfFolder),
    Row<&Settings::ShelfSongs>("ShelfSongs").CheckedBy(CheckShelfSongs),
    Row<&Settings::ShelfMegabytes>("ShelfMegabytes").CheckedBy(CheckShelfMegabytes),
    Row<&Settings::Favourites>("Favourites").CheckedBy(CheckFavourites),
    Row<&Settings::FavouritesFirst>("FavouritesFirst"),

    Record<&Settings::Format726, &Format726::Bits>("726_Bits"),
    Record<&Settings::Format726, &Format726::Frequency>("726_Frequency"),

    Record<&Settings::FormatMP3, &FormatMP3::ATHControl>("MP3_ATHControl"),
    Record<&Settings::FormatMP3, &FormatMP3::Bitrate>("MP3_Bitrate"),
    // The bit reservoir has always been stored under this bare prefix.
    Record<&Settings::FormatMP3, &FormatMP3::BitReservoir>("MP3_"),
    Record<&Settings::FormatMP3, &FormatMP3::Channels>("MP3_Channels"),
    Record<&Settings::FormatMP3, &FormatMP3::ComplyISO>("MP3_ComplyISO"),
    Record<&Settings::FormatMP3, &FormatMP3::DeEmphasis>("MP3_DeEmphasis"),
    Record<&Settings::FormatMP3, &FormatMP3::DifferentBlockTypes>("MP3_DifferentBlockTypes"),
    Record<&Settings::FormatMP3, &FormatMP3::Frequency>("MP3_Frequency"),
    Record<&Settings::FormatMP3, &FormatMP3::HighPassFilter>("MP3_HighPassFilter"),
    Record<&Settings::FormatMP3, &FormatMP3::HighPassFilterFreq>("MP3_HighPassFilterFreq"),
    Record<&Settings::FormatMP3, &FormatMP3::HighPassFilterWidth>("MP3_HighPassFilterWidth"),
    Record<&Settings::FormatMP3, &FormatMP3::IncludeCRC>("MP3_IncludeCRC"),
    Record<&Settings::FormatMP3, &FormatMP3::LowPassFilter>("MP3_LowPassFilter"),
    Record<&Settings::FormatMP3, &FormatMP3::LowPassFilterFreq>("MP3_LowPassFilterFreq"),
    Record<&Settings::FormatMP3, &FormatMP3::LowPassFilterWidth>("MP3_LowPassFilterWidth"),
    Record<&Settings::FormatMP3, &FormatMP3::Quality>("MP3_Quality"),
    Record<&Settings::FormatMP3, &FormatMP3::ShortBlocks>("MP3_ShortBlocks"),
    Record<&Settings::FormatMP3, &FormatMP3::TypeStereo>("MP3_TypeStereo"),
    Record<&Settings::FormatMP3, &FormatMP3::VBRCodingMethod>("MP3_VBRCodingMethod"),
    Record<&Settings::FormatMP3, &FormatMP3::VBREnforceMinBitRate>("MP3_VBREnforceMinBitRate"),
    Record<&Settings::FormatMP3, &FormatMP3::VBRHeader>("MP3_VBRHeader"),
    Record<&Settings::FormatMP3, &FormatMP3::VBRMaxBitrate>("MP3_VBRMaxBitrate"),
    Record<&Settings::FormatMP3, &FormatMP3::VBRQuality>("MP3_VBRQuality"),
    Record<&Settings::FormatMP3, &FormatMP3::VBRTargetBitrate>("MP3_VBRTargetBitrate"),

    Record<&Settings::FormatOGG, &FormatOGG::Bitrate>("OGG_Bitrate"),
    Record<&Settings::FormatOGG, &FormatOGG::MaxBitrate>("OGG_MaxBitrate"),
    Record<&Settings::FormatOGG, &FormatOGG::MinBitrate>("OGG_MinBitrate"),
    Record<&Settings::FormatOGG, &FormatOGG::Quality>("OGG_Quality"),
    Record<&Settings::FormatOGG, &FormatOGG::QualityEnabled>("OGG_QualityEnabled"),
    Record<&Settings::FormatOGG, &FormatOGG::VbrEnabled>("OGG_VbrEnabled"),

    Record<&Settings::FormatRAW, &FormatRAW::Channels>("RAW_Channels"),
    Record<&Settings::FormatRAW, &FormatRAW::Compression>("RAW_Compression"),
    Record<&Settings::FormatRAW, &FormatRAW::Frequency>("RAW_Frequency"),

    Record<&Settings::FormatVOX, &FormatVOX::Frequency>("VOX_Frequency"),

    Record<&Settings::FormatWAV, &FormatWAV::Bits>("WAV_Bits"),
    Record<&Settings::FormatWAV, &FormatWAV::Channels>("WAV_Channels"),
    Record<&Settings::FormatWAV, &FormatWAV::Frequency>("WAV_Frequency"),

    Record<&Settings::FormatFLAC, &FormatFLAC::Level>("FLAC_Level").CheckedBy(CheckFlacLevel),

    Record<&Settings::FormatOPUS, &FormatOPUS::Bitrate>("OPUS_Bitrate").CheckedBy(CheckOpusBitrate),
    Record<&Settings::FormatOPUS, &FormatOPUS::Voice>("OPUS_Voice"),

    Row<&Settings::LegalAgreement>("LegalAgreement").Following("only the user's own consent sets it"),
    Row<&Settings::ChannelListing>("ChannelListing").Following("it follows the channels window"),
    Row<&Settings::RecordLog>("RecordLog").Following("it follows the log window"),
    Row<&Settings::KestruneNow>("KestruneNow").Following("it follows the now window"),
    Row<&Settings::RecordingReport>("RecordingReport").Following("it follows the report's window"),
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
  if (!CheckCutOverlap(settings, environment).Ok()) settings.CutOverlap = defaults.CutOverlap;
  if (!CheckFlacLevel(settings, environment).Ok()) settings.FormatFLAC.Level = defaults.FormatFLAC.Level;
  if (!CheckOpusBitrate(settings, environment).Ok())
    settings.FormatOPUS.Bitrate = defaults.FormatOPUS.Bitrate;
  if (!CheckShelfSongs(settings, environment).Ok()) settings.ShelfSongs = defaults.ShelfSongs;
  if (!CheckFavourites(settings, environment).Ok()) settings.Favourites = defaults.Favourites;
  if (!CheckShelfMegabytes(settings, environment).Ok()) settings.ShelfMegabytes = defaults.ShelfMegabytes;
  if (settings.FileDir == defaults.FileDir || settings.FileDir.empty())
    settings.FileDir = environment.DefaultRecordingFolder();
  base::Ignored(CheckFileDir(settings, environment));
  if (!settings.FileDir.ends_with('/')) settings.FileDir += '/';
  if (!CheckShelfFolder(settings, environment).Ok()) settings.ShelfFolder = defaults.ShelfFolder;
}

bool SaveSetting(const SettingsSection& section, const Settings& settings, std::string_view key) {
  const SettingKey* row = FindSettingKey(key);
  return row != nullptr && section.SaveText(row->Key, row->Text(settings));
}

}  // namespace kestrune::config
