#include "presenters/Configuration.h"

#include <cmath>
#include <cstdint>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "config/formats/FormatTable.h"
#include "config/settings/ConfigurationSave.h"
#include "config/settings/SettingKeys.h"

namespace kestrune::presenters {
namespace {

/// The keys of a save, in the order in which they are written.
constexpr std::string_view kSavedKeys[] = {
    "MinSongLength", "MaxSongLength",  "SongDelay",        "FileDir",      "FilenameFormat",
    "FileFormat",    "AGCEnabled",     "AGCLowLevel",      "AGCHighLevel", "AGCAttackTime",
    "InputDevice",   "SaveDuplicates", "TaskBarMinimized",
};

ChoiceList MinLengths() {
  ChoiceList list;
  list.Rows.push_back({"None", 0});
  for (int seconds = 2; seconds <= 15; ++seconds) {
    list.Rows.push_back({fmt::format("{} Sec", seconds), seconds});
  }
  for (int seconds = 20; seconds <= 120; seconds += 5) {
    list.Rows.push_back({fmt::format("{} Sec", seconds), seconds});
  }
  return list;
}

ChoiceList MaxLengths() {
  ChoiceList list;
  list.Rows.push_back({"Unlimited", 0});
  for (int halves = 1; halves <= 30; ++halves) {
    const std::string whole = halves < 2 ? "" : std::to_string(halves / 2);
    list.Rows.push_back({fmt::format("{}.{} Min", whole, halves % 2 * 5), halves * 30});
  }
  return list;
}

ChoiceList SongDelays() {
  ChoiceList list;
  for (int delay = 0; delay <= 5000; delay += 100) list.Rows.push_back({std::to_string(delay), delay});
  return list;
}

ChoiceList FileFormats() {
  ChoiceList list;
  for (const std::string_view code : config::FileFormats()) list.Rows.push_back({std::string(code), 0});
  return list;
}

std::int16_t ChosenOr(const ChoiceList& list, std::int16_t present) {
  return static_cast<std::int16_t>(list.Value().value_or(present));
}

std::int16_t SongDelayOf(const std::string& text) {
  constexpr std::size_t kRead = 4;
  return base::ToInt16(std::abs(base::LeadingNumber(text.substr(0, kRead)))).value_or(0);
}

}  // namespace

Configuration::Configuration(ConfigurationAccess access)
    : access_(std::move(access)),
      filenameFormats_(controls_.txtFilenameFormat),
      mp3_(access_.Settings, access_.Section),
      ogg_(access_.Settings, access_.Section) {
  for (const OptionWindow& design : OptionWindows()) {
    buttons_.try_emplace(design.FileFormat, design, access_.Settings, access_.Section);
  }
}

FormatOptions* Configuration::Buttons(std::string_view fileFormat) {
  const auto found = buttons_.find(fileFormat);
  return found != buttons_.end() ? &found->second : nullptr;
}

void Configuration::Load() {
  const config::Settings& settings = access_.Settings;
  fieldToMend_ = {};
  controls_.cboMinLength = MinLengths();
  controls_.cboMinLength.SelectValue(settings.MinSongLength);
  controls_.cboMaxLength = MaxLengths();
  controls_.cboMaxLength.SelectValue(settings.MaxSongLength);
  controls_.cboSongDelay = SongDelays();
  controls_.cboSongDelay.SelectValue(settings.SongDelay);
  controls_.txtFileDir = settings.FileDir;
  controls_.txtFilenameFormat = settings.FilenameFormat;
  controls_.cboFileFormat = FileFormats();
  controls_.cboFileFormat.SelectText(settings.FileFormat);
  controls_.chkAGCEnabled = settings.AGCEnabled;
  controls_.AGCSpinsVisible = settings.AGCEnabled;
  controls_.txtAGCLowLevel = std::to_string(settings.AGCLowLevel);
  controls_.txtAGCHighLevel = std::to_string(settings.AGCHighLevel);
  controls_.txtAGCAttackTime = std::to_string(settings.AGCAttackTime);
  controls_.chkDuplicates = settings.SaveDuplicates;
  controls_.chkTaskBarMinimized = settings.TaskBarMinimized;
  FillDevices();
  ShowFormat();
  controls_.cboDevice.SelectValue(settings.InputDevice);
  dirty_ = false;
}

void Configuration::FillDevices() {
  controls_.cboDevice = {};
  for (const recorder::InputDevice& device : access_.Devices()) {
    controls_.cboDevice.Rows.push_back({device.Name, device.Index});
  }
}

void Configuration::Choose(ChoiceList& list, int row) {
  list.Select(row);
  dirty_ = true;
}

void Configuration::cboMinLength(int row) {
  Choose(controls_.cboMinLength, row);
}

void Configuration::cboMaxLength(int row) {
  Choose(controls_.cboMaxLength, row);
}

void Configuration::cboSongDelay(int row) {
  Choose(controls_.cboSongDelay, row);
}

void Configuration::cboDevice(int row) {
  Choose(controls_.cboDevice, row);
}

void Configuration::cboFileFormat(int row) {
  Choose(controls_.cboFileFormat, row);
  TakeFileFormat();
  ShowFormat();
}

void Configuration::TakeFileFormat() {
  if (controls_.cboFileFormat.Row < 0) return;
  base::Ignored(config::WriteFileFormat(access_.Settings, controls_.cboFileFormat.Text(), access_.cmdStop));
}

void Configuration::ShowFormat() {
  access_.FileSpecs.SetFileSpecs(-1);
  controls_.lblFormatSpecifications = access_.FileSpecs.FileFormatString();
}

void Configuration::FormatOptionsClosed() {
  TakeFileFormat();
  ShowFormat();
}

void Configuration::chkAGCEnabled(bool checked) {
  controls_.chkAGCEnabled = checked;
  controls_.AGCSpinsVisible = checked;
}

void Configuration::StepAGCLowLevel(int direction) {
  controls_.txtAGCLowLevel = Stepped(controls_.txtAGCLowLevel, kAGCLevelRange, direction);
}

void Configuration::StepAGCHighLevel(int direction) {
  controls_.txtAGCHighLevel = Stepped(controls_.txtAGCHighLevel, kAGCLevelRange, direction);
}

void Configuration::StepAGCAttackTime(int direction) {
  controls_.txtAGCAttackTime = Stepped(controls_.txtAGCAttackTime, kAGCAttackRange, direction);
}

void Configuration::chkDuplicates(bool checked) {
  controls_.chkDuplicates = checked;
  dirty_ = true;
}

std::string Configuration::cmdBrowse() {
  dirty_ = true;
  std::string start = controls_.txtFileDir;
  if (start.empty()) start = access_.Environment.DefaultRecordingFolder();
  while (start.size() > 1 && start.ends_with('/')) start.pop_back();
  return start;
}

void Configuration::FolderChosen(std::string_view folder) {
  folder = folder.substr(0, folder.find('\0'));
  if (!folder.empty()) controls_.txtFileDir = folder;
}

void Configuration::cmdDefault() {
  const config::Settings defaults;
  controls_.cboMinLength.SelectText("45 Sec");
  controls_.cboMaxLength.SelectText("Unlimited");
  controls_.cboSongDelay.SelectText("600");
  controls_.cboFileFormat.SelectText("MP3");
  TakeFileFormat();
  controls_.txtFilenameFormat = defaults.FilenameFormat;
  controls_.chkDuplicates = true;
  controls_.chkTaskBarMinimized = true;
  ShowFormat();
  dirty_ = true;
}

bool Configuration::cmdSave() {
  config::Settings& settings = access_.Settings;
  fieldToMend_ = {};
  const std::int16_t minimum = ChosenOr(controls_.cboMinLength, settings.MinSongLength);
  const std::int16_t maximum = ChosenOr(controls_.cboMaxLength, settings.MaxSongLength);
  if (!config::SongLengthsAgree(minimum, maximum)) {
    base::Ignored(access_.Dialogs.Show({.Title = std::string(config::kSongLengthTitle),
                                        .Text = std::string(config::kSongLengthText),
                                        .Icon = platform::MessageIcon::Warning,
                                        .Buttons = platform::MessageButtons::Ok}));
    return false;
  }
  controls_.txtFilenameFormat = config::CleanFilenameFormat(controls_.txtFilenameFormat);

  // The three numbers are read before anything is written, so that nothing is half saved.
  const std::optional<std::int16_t> highLevel = base::ToInt16(controls_.txtAGCHighLevel);
  const std::optional<std::int16_t> lowLevel = base::ToInt16(controls_.txtAGCLowLevel);
  const std::optional<std::int16_t> attackTime = base::ToInt16(controls_.txtAGCAttackTime);
  if (!highLevel)
    fieldToMend_ = "txtAGCHighLevel";
  else if (!lowLevel)
    fieldToMend_ = "txtAGCLowLevel";
  else if (!attackTime)
    fieldToMend_ = "txtAGCAttackTime";
  if (!highLevel || !lowLevel || !attackTime) return false;

  settings.FilenameFormat = controls_.txtFilenameFormat;
  settings.MinSongLength = minimum;
  settings.MaxSongLength = maximum;
  settings.SongDelay = SongDelayOf(controls_.cboSongDelay.Text());
  config::WriteFileDir(settings, controls_.txtFileDir);
  TakeFileFormat();
  settings.AGCEnabled = controls_.chkAGCEnabled;
  settings.AGCHighLevel = *highLevel;
  settings.AGCLowLevel = *lowLevel;
  settings.AGCAttackTime = *attackTime;
  settings.SaveDuplicates = controls_.chkDuplicates;
  const std::int16_t device =
      std::exchange(settings.InputDevice, ChosenOr(controls_.cboDevice, settings.InputDevice));
  settings.TaskBarMinimized = controls_.chkTaskBarMinimized;

  for (const std::string_view key : kSavedKeys) {
    base::Ignored(config::SaveSetting(access_.Section, settings, key));
  }
  dirty_ = false;
  if (settings.InputDevice != device) access_.DeviceChanged();
  return true;
}

bool Configuration::CloseBox() {
  if (!dirty_) return true;
  const platform::MessageAnswer answer =
      access_.Dialogs.Show({.Title = "Save Configuration Changes",
                            .Text = "You have made changes, do you want to save your changes first?",
                            .Icon = platform::MessageIcon::Information,
                            .Buttons = platform::MessageButtons::YesNoCancel});
  if (answer == platform::MessageAnswer::Cancel) return false;
  if (answer != platform::MessageAnswer::Yes) return true;
  return cmdSave() || fieldToMend_.empty();
}

}  // namespace kestrune::presenters
