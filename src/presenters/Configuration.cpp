#include "presenters/Configuration.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "config/formats/FormatTable.h"
#include "config/settings/SettingChecks.h"
#include "recorder/DiskWatch.h"

namespace kestrune::presenters {
namespace {

constexpr std::string_view kSaveTitle = "Save Configuration Changes";
constexpr std::string_view kWelcome =
    "Welcome to Kestrune! Choose the input whose level moves while the radio plays, and press Save; all "
    "else can stay as it is.";
/// Two seconds.
constexpr int kBeatsPerLookAtRoom = 20;

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

ChoiceList CutPlacements() {
  using config::CutPlacement;
  ChoiceList list;
  list.Rows = {{"When the text changes", static_cast<std::int32_t>(CutPlacement::Text)},
               {"By listening", static_cast<std::int32_t>(CutPlacement::Listen)}};
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

bool TakeNumber(std::int32_t& field, std::string_view text) {
  const std::optional<std::int32_t> number = base::ToInt32(text);
  if (number) field = *number;
  return number.has_value();
}

bool TakeNumber(std::int16_t& field, std::string_view text) {
  const std::optional<std::int16_t> number = base::ToInt16(text);
  if (number) field = *number;
  return number.has_value();
}

}  // namespace

/// A control of the window and its setting.
struct Configuration::Field {
  std::string_view Key;
  std::string_view Control;
  void (*Show)(ConfigurationControls& controls, const config::Settings& settings);
  /// False if the control's text is no value of the setting.
  bool (*Take)(const ConfigurationControls& controls, config::Settings& settings);
};

// In the order in which a save stores the settings.
const std::array<Configuration::Field, Configuration::kFieldCount> Configuration::kFields{{
    {"MinSongLength", "cboMinLength",
     [](auto& controls, const auto& settings) { controls.cboMinLength.SelectValue(settings.MinSongLength); },
     [](const auto& controls, auto& settings) {
       settings.MinSongLength = ChosenOr(controls.cboMinLength, settings.MinSongLength);
       return true;
     }},
    {"MaxSongLength", "cboMaxLength",
     [](auto& controls, const auto& settings) { controls.cboMaxLength.SelectValue(settings.MaxSongLength); },
     [](const auto& controls, auto& settings) {
       settings.MaxSongLength = ChosenOr(controls.cboMaxLength, settings.MaxSongLength);
       return true;
     }},
    {"SongDelay", "cboSongDelay",
     [](auto& controls, const auto& settings) { controls.cboSongDelay.SelectValue(settings.SongDelay); },
     [](const auto& controls, auto& settings) {
       settings.SongDelay = SongDelayOf(controls.cboSongDelay.Text());
       return true;
     }},
    {"FileDir", "txtFileDir",
     [](auto& controls, const auto& settings) { controls.txtFileDir = settings.FileDir; },
     [](const auto& controls, auto& settings) {
       settings.FileDir = controls.txtFileDir;
       return true;
     }},
    {"FilenameFormat", "txtFilenameFormat",
     [](auto& controls, const auto& settings) { controls.txtFilenameFormat = settings.FilenameFormat; },
     [](const auto& controls, auto& settings) {
       settings.FilenameFormat = controls.txtFilenameFormat;
       return true;
     }},
    {"FileFormat", "cboFileFormat",
     [](auto& controls, const auto& settings) { controls.cboFileFormat.SelectText(settings.FileFormat); },
     [](const auto& controls, auto& settings) {
       if (controls.cboFileFormat.Row >= 0) settings.FileFormat = controls.cboFileFormat.Text();
       return true;
     }},
    {"AGCEnabled", "chkAGCEnabled",
     [](auto& controls, const auto& settings) {
       controls.chkAGCEnabled = controls.AGCSpinsVisible = settings.AGCEnabled;
     },
     [](const auto& controls, auto& settings) {
       settings.AGCEnabled = controls.chkAGCEnabled;
       return true;
     }},
    {"AGCLowLevel", "txtAGCLowLevel",
     [](auto& controls, const auto& settings) {
       controls.txtAGCLowLevel = std::to_string(settings.AGCLowLevel);
     },
     [](const auto& controls, auto& settings) {
       return TakeNumber(settings.AGCLowLevel, controls.txtAGCLowLevel);
     }},
    {"AGCHighLevel", "txtAGCHighLevel",
     [](auto& controls, const auto& settings) {
       controls.txtAGCHighLevel = std::to_string(settings.AGCHighLevel);
     },
     [](const auto& controls, auto& settings) {
       return TakeNumber(settings.AGCHighLevel, controls.txtAGCHighLevel);
     }},
    {"AGCAttackTime", "txtAGCAttackTime",
     [](auto& controls, const auto& settings) {
       controls.txtAGCAttackTime = std::to_string(settings.AGCAttackTime);
     },
     [](const auto& controls, auto& settings) {
       return TakeNumber(settings.AGCAttackTime, controls.txtAGCAttackTime);
     }},
    {"InputDevice", "cboDevice",
     [](auto& controls, const auto& settings) { controls.cboDevice.SelectValue(settings.InputDevice); },
     [](const auto& controls, auto& settings) {
       settings.InputDevice = ChosenOr(controls.cboDevice, settings.InputDevice);
       return true;
     }},
    {"SaveDuplicates", "chkDuplicates",
     [](auto& controls, const auto& settings) { controls.chkDuplicates = settings.SaveDuplicates; },
     [](const auto& controls, auto& settings) {
       settings.SaveDuplicates = controls.chkDuplicates;
       return true;
     }},
    {"TaskBarMinimized", "chkTaskBarMinimized",
     [](auto& controls, const auto& settings) { controls.chkTaskBarMinimized = settings.TaskBarMinimized; },
     [](const auto& controls, auto& settings) {
       settings.TaskBarMinimized = controls.chkTaskBarMinimized;
       return true;
     }},
    {"Watch", "chkWatch", [](auto& controls, const auto& settings) { controls.chkWatch = settings.Watch; },
     [](const auto& controls, auto& settings) {
       settings.Watch = controls.chkWatch;
       return true;
     }},
    {"CutPlacement", "cboCutPlacement",
     [](auto& controls, const auto& settings) {
       controls.cboCutPlacement.SelectValue(static_cast<std::int32_t>(settings.CutPlacement));
     },
     [](const auto& controls, auto& settings) {
       settings.CutPlacement = static_cast<config::CutPlacement>(
           ChosenOr(controls.cboCutPlacement, static_cast<std::int16_t>(settings.CutPlacement)));
       return true;
     }},
    {"ShelfFolder", "txtShelfFolder",
     [](auto& controls, const auto& settings) { controls.txtShelfFolder = settings.ShelfFolder; },
     [](const auto& controls, auto& settings) {
       settings.ShelfFolder = controls.txtShelfFolder;
       return true;
     }},
    {"ShelfSongs", "txtShelfSongs",
     [](auto& controls, const auto& settings) {
       controls.txtShelfSongs = std::to_string(settings.ShelfSongs);
     },
     [](const auto& controls, auto& settings) {
       return TakeNumber(settings.ShelfSongs, controls.txtShelfSongs);
     }},
    {"ShelfMegabytes", "txtShelfMegabytes",
     [](auto& controls, const auto& settings) {
       controls.txtShelfMegabytes = std::to_string(settings.ShelfMegabytes);
     },
     [](const auto& controls, auto& settings) {
       return TakeNumber(settings.ShelfMegabytes, controls.txtShelfMegabytes);
     }},
    {"Hints", "chkHints", [](auto& controls, const auto& settings) { controls.chkHints = settings.Hints; },
     [](const auto& controls, auto& settings) {
       settings.Hints = controls.chkHints;
       return true;
     }},
    {"FollowHints", "chkFollowHints",
     [](auto& controls, const auto& settings) { controls.chkFollowHints = settings.FollowHints; },
     [](const auto& controls, auto& settings) {
       settings.FollowHints = controls.chkFollowHints;
       return true;
     }},
    {"NotifySongs", "chkNotifySongs",
     [](auto& controls, const auto& settings) { controls.chkNotifySongs = settings.NotifySongs; },
     [](const auto& controls, auto& settings) {
       settings.NotifySongs = controls.chkNotifySongs;
       return true;
     }},
    {"NotifyEvents", "chkNotifyEvents",
     [](auto& controls, const auto& settings) { controls.chkNotifyEvents = settings.NotifyEvents; },
     [](const auto& controls, auto& settings) {
       settings.NotifyEvents = controls.chkNotifyEvents;
       return true;
     }},
    {"NotifyProblems", "chkNotifyProblems",
     [](auto& controls, const auto& settings) { controls.chkNotifyProblems = settings.NotifyProblems; },
     [](const auto& controls, auto& settings) {
       settings.NotifyProblems = controls.chkNotifyProblems;
       return true;
     }},
    {"NotifyHints", "chkNotifyHints",
     [](auto& controls, const auto& settings) { controls.chkNotifyHints = settings.NotifyHints; },
     [](const auto& controls, auto& settings) {
       settings.NotifyHints = controls.chkNotifyHints;
       return true;
     }},
}};

Configuration::Configuration(ConfigurationAccess access)
    : access_(std::move(access)),
      filenameFormats_(controls_.txtFilenameFormat,
                       [this](std::string_view text) { txtFilenameFormat(text); }),
      mp3_(access_.Settings),
      ogg_(access_.Settings) {
  for (const OptionWindow& design : OptionWindows()) {
    buttons_.try_emplace(design.FileFormat, design, access_.Settings);
  }
}

FormatOptions* Configuration::Buttons(std::string_view fileFormat) {
  const auto found = buttons_.find(fileFormat);
  return found != buttons_.end() ? &found->second : nullptr;
}

void Configuration::Load() {
  shown_ = access_.Settings.Current();
  fieldToMend_ = {};
  controls_.cboMinLength = MinLengths();
  controls_.cboMaxLength = MaxLengths();
  controls_.cboSongDelay = SongDelays();
  controls_.cboCutPlacement = CutPlacements();
  controls_.cboFileFormat = FileFormats();
  FillDevices();
  for (const Field& field : kFields) field.Show(controls_, shown_);
  ShowFormat();
  ShowRoom();
  controls_.chkAutostart = access_.Autostart.Read().Starts;
  autostartTouched_ = false;
  controls_.lblWelcome.clear();
  touched_.reset();
  songDelayOffList_ = controls_.cboSongDelay.Row < 0;
  first_ = false;
  dirty_ = false;
}

void Configuration::LoadFirst() {
  Load();
  controls_.lblWelcome = kWelcome;
  first_ = true;
}

void Configuration::Follow() {
  if (--beats_ <= 0) ShowRoom();
  const config::Settings& current = access_.Settings.Current();
  if (current == shown_) return;
  if (current.SongDelay != shown_.SongDelay) songDelayOffList_ = false;
  shown_ = current;
  for (std::size_t i = 0; i < kFields.size(); ++i) {
    if (!touched_[i]) kFields[i].Show(controls_, current);
  }
  controls_.lblFormatSpecifications = access_.FileSpecs.FileFormatString();
}

void Configuration::ShowRoom() {
  beats_ = kBeatsPerLookAtRoom;
  controls_.lblFileRoom = RoomIn(access_.Files, controls_.txtFileDir, recorder::DiskWatch::kEnoughBytes);
  controls_.lblShelfRoom = RoomIn(access_.Files, controls_.txtShelfFolder, recorder::DiskWatch::kEnoughBytes);
}

void Configuration::FillDevices() {
  controls_.cboDevice = {};
  for (const recorder::InputDevice& device : access_.Devices()) {
    controls_.cboDevice.Rows.push_back({device.Name, device.Index});
  }
}

void Configuration::Touch(std::string_view key) {
  const auto field = std::ranges::find(kFields, key, &Field::Key);
  touched_.set(static_cast<std::size_t>(field - kFields.begin()));
}

void Configuration::Choose(std::string_view key, ChoiceList& list, int row) {
  list.Select(row);
  Touch(key);
  dirty_ = true;
}

void Configuration::Type(std::string_view key, std::string& control, std::string_view text) {
  control = text;
  Touch(key);
}

void Configuration::cboMinLength(int row) {
  Choose("MinSongLength", controls_.cboMinLength, row);
}

void Configuration::cboMaxLength(int row) {
  Choose("MaxSongLength", controls_.cboMaxLength, row);
}

void Configuration::cboSongDelay(int row) {
  Choose("SongDelay", controls_.cboSongDelay, row);
}

void Configuration::cboDevice(int row) {
  Choose("InputDevice", controls_.cboDevice, row);
}

void Configuration::cboFileFormat(int row) {
  Choose("FileFormat", controls_.cboFileFormat, row);
  TakeFileFormat();
  ShowFormat();
}

void Configuration::TakeFileFormat() {
  if (controls_.cboFileFormat.Row < 0) return;
  config::Settings wished = access_.Settings.Current();
  wished.FileFormat = controls_.cboFileFormat.Text();
  base::Ignored(access_.Settings.Change(wished, {"FileFormat"}, config::SettingLife::ThisRun));
}

void Configuration::ShowFormat() {
  access_.FileSpecs.SetFileSpecs(-1);
  controls_.lblFormatSpecifications = access_.FileSpecs.FileFormatString();
}

void Configuration::FormatOptionsClosed() {
  Follow();
  TakeFileFormat();
  ShowFormat();
}

void Configuration::txtFileDir(std::string_view text) {
  Type("FileDir", controls_.txtFileDir, text);
  ShowRoom();
}

void Configuration::txtFilenameFormat(std::string_view text) {
  Type("FilenameFormat", controls_.txtFilenameFormat, text);
}

void Configuration::chkAGCEnabled(bool checked) {
  controls_.chkAGCEnabled = checked;
  controls_.AGCSpinsVisible = checked;
  Touch("AGCEnabled");
}

void Configuration::txtAGCLowLevel(std::string_view text) {
  Type("AGCLowLevel", controls_.txtAGCLowLevel, text);
}

void Configuration::txtAGCHighLevel(std::string_view text) {
  Type("AGCHighLevel", controls_.txtAGCHighLevel, text);
}

void Configuration::txtAGCAttackTime(std::string_view text) {
  Type("AGCAttackTime", controls_.txtAGCAttackTime, text);
}

void Configuration::StepAGCLowLevel(int direction) {
  txtAGCLowLevel(Stepped(controls_.txtAGCLowLevel, kAGCLevelRange, direction));
}

void Configuration::StepAGCHighLevel(int direction) {
  txtAGCHighLevel(Stepped(controls_.txtAGCHighLevel, kAGCLevelRange, direction));
}

void Configuration::StepAGCAttackTime(int direction) {
  txtAGCAttackTime(Stepped(controls_.txtAGCAttackTime, kAGCAttackRange, direction));
}

void Configuration::chkDuplicates(bool checked) {
  controls_.chkDuplicates = checked;
  Touch("SaveDuplicates");
  dirty_ = true;
}

void Configuration::chkTaskBarMinimized(bool checked) {
  controls_.chkTaskBarMinimized = checked;
  Touch("TaskBarMinimized");
}

void Configuration::chkAutostart(bool checked) {
  controls_.chkAutostart = checked;
  autostartTouched_ = true;
  dirty_ = true;
}

void Configuration::chkWatch(bool checked) {
  controls_.chkWatch = checked;
  Touch("Watch");
  dirty_ = true;
}

void Configuration::cboCutPlacement(int row) {
  Choose("CutPlacement", controls_.cboCutPlacement, row);
}

void Configuration::txtShelfFolder(std::string_view text) {
  Type("ShelfFolder", controls_.txtShelfFolder, text);
  ShowRoom();
}

void Configuration::txtShelfSongs(std::string_view text) {
  Type("ShelfSongs", controls_.txtShelfSongs, text);
}

void Configuration::txtShelfMegabytes(std::string_view text) {
  Type("ShelfMegabytes", controls_.txtShelfMegabytes, text);
}

void Configuration::StepShelfSongs(int direction) {
  txtShelfSongs(Stepped(controls_.txtShelfSongs, kShelfSongsRange, direction));
}

void Configuration::StepShelfMegabytes(int direction) {
  txtShelfMegabytes(Stepped(controls_.txtShelfMegabytes, kShelfMegabytesRange, direction));
}

void Configuration::chkHints(bool checked) {
  controls_.chkHints = checked;
  Touch("Hints");
  dirty_ = true;
}

void Configuration::chkFollowHints(bool checked) {
  controls_.chkFollowHints = checked;
  Touch("FollowHints");
  dirty_ = true;
}

void Configuration::chkNotifySongs(bool checked) {
  controls_.chkNotifySongs = checked;
  Touch("NotifySongs");
  dirty_ = true;
}

void Configuration::chkNotifyEvents(bool checked) {
  controls_.chkNotifyEvents = checked;
  Touch("NotifyEvents");
  dirty_ = true;
}

void Configuration::chkNotifyProblems(bool checked) {
  controls_.chkNotifyProblems = checked;
  Touch("NotifyProblems");
  dirty_ = true;
}

void Configuration::chkNotifyHints(bool checked) {
  controls_.chkNotifyHints = checked;
  Touch("NotifyHints");
  dirty_ = true;
}

std::string Configuration::ChosenInputId() const {
  const std::optional<std::int32_t> chosen = controls_.cboDevice.Value();
  for (const recorder::InputDevice& device : access_.Devices()) {
    if (chosen == device.Index) return device.Id;
  }
  return {};
}

std::string Configuration::BrowseFrom(std::string folder) {
  dirty_ = true;
  if (folder.empty()) folder = access_.Environment.DefaultRecordingFolder();
  while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

std::string Configuration::cmdBrowse() {
  return BrowseFrom(controls_.txtFileDir);
}

std::string Configuration::cmdBrowseShelf() {
  return BrowseFrom(controls_.txtShelfFolder.empty() ? controls_.txtFileDir : controls_.txtShelfFolder);
}

void Configuration::ShelfFolderChosen(std::string_view folder) {
  folder = folder.substr(0, folder.find('\0'));
  if (!folder.empty()) txtShelfFolder(folder);
}

void Configuration::FolderChosen(std::string_view folder) {
  folder = folder.substr(0, folder.find('\0'));
  if (!folder.empty()) txtFileDir(folder);
}

void Configuration::cmdDefault() {
  constexpr std::string_view kReset[] = {"MinSongLength",  "MaxSongLength",  "SongDelay",       "FileFormat",
                                         "FilenameFormat", "SaveDuplicates", "TaskBarMinimized"};
  const config::Settings defaults;
  for (const Field& field : kFields) {
    if (std::ranges::find(kReset, field.Key) != std::end(kReset)) field.Show(controls_, defaults);
  }
  touched_.set();
  TakeFileFormat();
  ShowFormat();
  dirty_ = true;
}

bool Configuration::cmdSave() {
  fieldToMend_ = {};
  lengthsRefused_ = false;
  if (songDelayOffList_) Touch("SongDelay");
  config::Settings wished = access_.Settings.Current();
  std::vector<std::string_view> keys;
  for (std::size_t i = 0; i < kFields.size(); ++i) {
    const Field& field = kFields[i];
    if (touched_[i] && !field.Take(controls_, wished) && fieldToMend_.empty()) fieldToMend_ = field.Control;
    const bool format = field.Key == "FileFormat" && controls_.cboFileFormat.Row >= 0;
    if (touched_[i] || first_ || format) keys.push_back(field.Key);
  }
  if (!config::SongLengthsAgree(wished.MinSongLength, wished.MaxSongLength)) {
    fieldToMend_ = {};
    lengthsRefused_ = true;
    Tell(config::kSongLengthTitle, config::kSongLengthText);
    return false;
  }
  controls_.txtFilenameFormat = config::CleanFilenameFormat(controls_.txtFilenameFormat);
  if (!fieldToMend_.empty()) return false;

  const config::SettingOutcome outcome = access_.Settings.Change(wished, keys);
  if (!outcome.Done()) {
    const auto refused = std::ranges::find(kFields, outcome.Key, &Field::Key);
    if (refused != kFields.end()) fieldToMend_ = refused->Control;
    Tell(kSaveTitle, outcome.Refusal);
    return false;
  }
  if (!outcome.Warning.empty()) Tell(kSaveTitle, outcome.Warning);
  if (!outcome.Saved) {
    Tell(kSaveTitle, "The settings could not be saved.");
    return false;
  }
  touched_.reset();
  if (!SaveAutostart()) return false;
  dirty_ = false;
  return true;
}

bool Configuration::SaveAutostart() {
  if (!autostartTouched_) return true;
  const platform::AutostartState state = access_.Autostart.Read();
  const bool wanted = controls_.chkAutostart;
  if (state.Starts != wanted) {
    if (state.Foreign && !MayReplace(access_.Autostart.File(), wanted)) return false;
    const base::Result changed = wanted ? access_.Autostart.Enable() : access_.Autostart.Disable();
    if (!changed) {
      Tell(kSaveTitle, fmt::format("The start with the desktop could not be changed: {}.", changed.Cause()));
      return false;
    }
  }
  autostartTouched_ = false;
  return true;
}

bool Configuration::MayReplace(const std::string& file, bool wanted) {
  const platform::Message question{.Title = std::string(kSaveTitle),
                                   .Text = fmt::format("Kestrune has not made the file \"{}\". {} it?", file,
                                                       wanted ? "Replace" : "Remove"),
                                   .Icon = platform::MessageIcon::Question,
                                   .Buttons = platform::MessageButtons::YesNo};
  if (access_.Dialogs.Show(question) == platform::MessageAnswer::Yes) return true;
  controls_.chkAutostart = !wanted;
  autostartTouched_ = false;
  return false;
}

void Configuration::Tell(std::string_view title, std::string_view text) {
  base::Ignored(access_.Dialogs.Show({.Title = std::string(title),
                                      .Text = std::string(text),
                                      .Icon = platform::MessageIcon::Warning,
                                      .Buttons = platform::MessageButtons::Ok}));
}

bool Configuration::CloseBox() {
  if (!dirty_) return true;
  const platform::MessageAnswer answer =
      access_.Dialogs.Show({.Title = std::string(kSaveTitle),
                            .Text = "You have made changes, do you want to save your changes first?",
                            .Icon = platform::MessageIcon::Information,
                            .Buttons = platform::MessageButtons::YesNoCancel});
  if (answer == platform::MessageAnswer::Cancel) return false;
  if (answer != platform::MessageAnswer::Yes) return true;
  return cmdSave() || lengthsRefused_;
}

}  // namespace kestrune::presenters
