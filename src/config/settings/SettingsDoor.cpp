#include "config/settings/SettingsDoor.h"

#include <utility>

#include <fmt/format.h>

#include "base/OneLine.h"

namespace kestrune::config {
namespace {

/// The end of the sentence on a text that is no value of the type.
std::string_view Unreadable(SettingType type) {
  switch (type) {
    case SettingType::Int16:
      return "is no number from -32768 to 32767";
    case SettingType::Int32:
      return "is no number from -2147483648 to 2147483647";
    case SettingType::Bool:
      return "is neither True nor False";
    case SettingType::CutPlacement:
      return "is neither Text nor Listen";
    case SettingType::Text:
      break;
  }
  return "holds a control character";
}

SettingOutcome Refused(std::string_view key, std::string_view value, std::string_view reason) {
  return {.Key = std::string(key),
          .Reason = std::string(reason),
          .Refusal = fmt::format("{}: \"{}\" {}", key, base::OneLine(value), reason),
          .Warning = ""};
}

bool IsOneLine(const SettingKey& key, std::string_view value) {
  return key.Type != SettingType::Text || base::OneLine(value) == value;
}

}  // namespace

SettingsDoor::SettingsDoor(const Place& place, SettingEffects effects)
    : place_(place), effects_(std::move(effects)) {}

void SettingsDoor::Load() {
  LoadSettings(place_.Section, place_.Environment, place_.Settings);
}

std::optional<std::string> SettingsDoor::Get(std::string_view key) const {
  const SettingKey* row = FindSettingKey(key);
  if (row == nullptr) return std::nullopt;
  return row->Text(place_.Settings);
}

SettingOutcome SettingsDoor::Set(std::string_view key, std::string_view value) {
  SettingOutcome refused;
  const SettingKey* row = FindSettingKey(key);
  if (row == nullptr) {
    refused.Refusal = fmt::format("There is no setting \"{}\"", base::OneLine(key));
    return refused;
  }
  if (!row->FollowsFrom.empty()) {
    refused.Refusal =
        fmt::format("{} cannot be set to \"{}\": {}", row->Key, base::OneLine(value), row->FollowsFrom);
    return refused;
  }
  Settings wished = place_.Settings;
  if (!row->Read(wished, value)) return Refused(row->Key, value, Unreadable(row->Type));
  if (row->Effect == SettingEffect::Folder) {
    Settings corrected = wished;
    const bool valid = Checked(corrected, {row}).Done();
    const base::Result writable = place_.Files.CheckWritable(corrected.FileDir);
    if (valid && !writable.Ok()) return Refused(row->Key, value, "cannot be written to: " + writable.Cause());
  }
  return Take(wished, {row}, SettingLife::Stored, true);
}

SettingOutcome SettingsDoor::Change(const Settings& wished, const std::vector<std::string_view>& keys,
                                    SettingLife life) {
  Rows rows;
  for (const std::string_view key : keys) {
    if (const SettingKey* row = FindSettingKey(key)) rows.push_back(row);
  }
  return Take(wished, rows, life, true);
}

SettingOutcome SettingsDoor::ChangeFormat(const Settings& wished, std::string_view fileFormat) {
  Rows rows;
  for (const SettingKey& row : FormatKeys(fileFormat)) rows.push_back(&row);
  return Take(wished, rows, SettingLife::Stored, false);
}

SettingOutcome SettingsDoor::Checked(Settings& wished, const Rows& rows) const {
  for (const SettingKey* row : rows) {
    const std::string value = row->Text(wished);
    if (!IsOneLine(*row, value)) return Refused(row->Key, value, Unreadable(row->Type));
    if (row->Check == nullptr) continue;
    const base::Result result = row->Check(wished, place_.Environment);
    if (!result.Ok()) return Refused(row->Key, value, result.Cause());
  }
  return {};
}

SettingOutcome SettingsDoor::Take(const Settings& wishes, const Rows& rows, SettingLife life,
                                  bool preparesFormat) {
  Settings wished = place_.Settings;
  for (const SettingKey* row : rows) row->Copy(wished, wishes);
  SettingOutcome outcome = Checked(wished, rows);
  if (!outcome.Done()) return outcome;

  bool formatChanged = false;
  bool deviceChanged = false;
  bool folderSet = false;
  // The stop may let other settings change, so only the wished ones are taken over.
  for (const SettingKey* row : rows) {
    const SettingEffect effect = row->Effect;
    const bool differs = row->Text(wished) != row->Text(place_.Settings);
    if (differs && effect == SettingEffect::FileFormat) effects_.StopRecording();
    row->Copy(place_.Settings, wished);
    formatChanged |=
        differs && (effect == SettingEffect::FileFormat || effect == SettingEffect::FormatRecord);
    deviceChanged |= differs && effect == SettingEffect::InputDevice;
    folderSet |= effect == SettingEffect::Folder;
  }
  if (life == SettingLife::Stored) outcome.Saved = Save(rows, SettingStored::AtOnce);

  if (formatChanged && preparesFormat) effects_.PrepareFormat();
  if (deviceChanged) effects_.DeviceChanged();
  if (folderSet) WarnOfFolder(outcome);
  return outcome;
}

void SettingsDoor::WarnOfFolder(SettingOutcome& outcome) {
  const std::string& folder = place_.Settings.FileDir;
  const base::Result writable = place_.Files.CheckWritable(folder);
  if (writable.Ok()) return;
  outcome.Warning = fmt::format("Nothing can be recorded to {}: {}", base::OneLine(folder), writable.Cause());
  place_.Log.DoLog(outcome.Warning);
}

bool SettingsDoor::SaveAtExit() {
  Rows rows;
  for (const SettingKey& row : SettingKeys()) rows.push_back(&row);
  return Save(rows, SettingStored::AtExit);
}

bool SettingsDoor::Save(const Rows& rows, SettingStored when) {
  bool saved = true;
  for (const SettingKey* row : rows) {
    if (row->Stored == when && !SaveSetting(place_.Section, place_.Settings, row->Key)) saved = false;
  }
  if (!saved) place_.Log.DoLog("The settings could not be saved");
  return saved;
}

}  // namespace kestrune::config
