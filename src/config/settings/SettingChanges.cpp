#include "config/settings/SettingChanges.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "base/OneLine.h"
#include "config/formats/FormatTable.h"
#include "config/settings/ConfigurationSave.h"
#include "config/settings/SettingKeys.h"

namespace kestrune::config {
namespace {

/// Looks at the wished settings, may put one of them right, and gives the reason if they cannot stand: what
/// follows the value in the refusal.
using Rule = std::string (*)(Settings& wished);

std::string CheckState(std::int16_t state) {
  return state == 0 || state == 1 ? "" : "is neither 0 nor 1";
}

std::string SongLengths(Settings& wished) {
  if (SongLengthsAgree(wished.MinSongLength, wished.MaxSongLength)) return {};
  return fmt::format("is refused. {}; now {} and {}, 0 for no maximum", kSongLengthText, wished.MinSongLength,
                     wished.MaxSongLength);
}

std::string SongDelay(Settings& wished) {
  if (wished.SongDelay == INT16_MIN) return "is not from -32767 to 32767";
  if (wished.SongDelay < 0) wished.SongDelay = static_cast<std::int16_t>(-wished.SongDelay);
  return {};
}

std::string FileDir(Settings& wished) {
  if (!wished.FileDir.starts_with('/')) return "is no folder that begins with /";
  WriteFileDir(wished, std::string(wished.FileDir));
  return {};
}

std::string FileFormat(Settings& wished) {
  if (FindFormat(wished.FileFormat) != nullptr) return {};
  return fmt::format("is not one of {}", fmt::join(FileFormats(), ", "));
}

std::string FilenameFormat(Settings& wished) {
  wished.FilenameFormat = CleanFilenameFormat(wished.FilenameFormat);
  return {};
}

constexpr std::pair<std::string_view, Rule> kRules[] = {
    {"SievanceGrab", [](Settings& wished) { return CheckState(wished.SievanceGrab); }},
    {"SievanceKill", [](Settings& wished) { return CheckState(wished.SievanceKill); }},
    {"MinSongLength", SongLengths},
    {"MaxSongLength", SongLengths},
    {"SongDelay", SongDelay},
    {"FileDir", FileDir},
    {"FileFormat", FileFormat},
    {"FilenameFormat", FilenameFormat},
};

/// Settings that follow from something else, and what they follow from.
constexpr std::pair<std::string_view, std::string_view> kReadOnly[] = {
    {"Channel", "it is the tuned channel, which the command tune changes"},
    {"PortNum", "it is the port on which the radio was found, which the option /port changes"},
    {"InputDeviceId", "it follows InputDevice"},
    {"LegalAgreement", "only the user's own consent sets it"},
    {"ChannelListing", "it follows the channels window"},
    {"RecordLog", "it follows the log window"},
    {"KestruneNow", "it follows the now window"},
};

template <typename Table>
auto Lookup(const Table& table, std::string_view key) {
  return std::ranges::find(table, key, [](const auto& row) { return row.first; });
}

/// What a text has to be to be read as the type; it follows the value in the refusal.
std::string_view Unreadable(SettingType type) {
  switch (type) {
    case SettingType::Int16:
      return "is no number from -32768 to 32767";
    case SettingType::Int32:
      return "is no number from -2147483648 to 2147483647";
    case SettingType::Bool:
      return "is neither True nor False";
    case SettingType::Text:
      break;
  }
  return "holds a control character";
}

/// Why the value cannot be taken over, or empty; `wished` is then the settings with the value in them.
std::string ReadWish(const SettingKey& key, std::string_view value, Settings& wished) {
  const bool plain = key.Type != SettingType::Text || base::OneLine(value) == value;
  if (!plain || !key.Read(wished, value)) return std::string(Unreadable(key.Type));
  const auto rule = Lookup(kRules, key.Key);
  return rule == std::end(kRules) ? std::string() : rule->second(wished);
}

}  // namespace

SettingChanges::SettingChanges(Settings& settings, const SettingsSection& section,
                               std::function<void()> beforeFileFormatChange)
    : settings_(settings), section_(section), beforeFileFormatChange_(std::move(beforeFileFormatChange)) {}

std::optional<std::string> SettingChanges::Get(std::string_view key) const {
  const SettingKey* row = FindSettingKey(key);
  if (row == nullptr) return std::nullopt;
  return row->Text(settings_);
}

SettingOutcome SettingChanges::Set(std::string_view key, std::string_view value) {
  SettingOutcome outcome;
  const SettingKey* row = FindSettingKey(key);
  if (row == nullptr) {
    outcome.Refusal = fmt::format("There is no setting \"{}\"", base::OneLine(key));
    return outcome;
  }
  if (const auto readOnly = Lookup(kReadOnly, row->Key); readOnly != std::end(kReadOnly)) {
    outcome.Refusal =
        fmt::format("{} cannot be set to \"{}\": {}", row->Key, base::OneLine(value), readOnly->second);
    return outcome;
  }
  Settings wished = settings_;
  if (const std::string reason = ReadWish(*row, value, wished); !reason.empty()) {
    outcome.Refusal = fmt::format("{}: \"{}\" {}", row->Key, base::OneLine(value), reason);
    return outcome;
  }

  if (row->Key == "FileFormat") {
    // The stop may let events run that change other settings, so this one alone is taken over.
    outcome.FormatChanged = WriteFileFormat(settings_, wished.FileFormat, beforeFileFormatChange_);
  } else {
    settings_ = std::move(wished);
    outcome.FormatChanged = row->Key.find('_') != std::string_view::npos;
  }
  const bool storedAtExit = row->Key == "SievanceGrab" || row->Key == "SievanceKill";
  outcome.Saved = storedAtExit || SaveSetting(section_, settings_, row->Key);
  return outcome;
}

}  // namespace kestrune::config
