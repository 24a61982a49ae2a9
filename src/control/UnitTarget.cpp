#include "control/UnitTarget.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/Text.h"
#include "base/Version.h"
#include "config/update/VersionFile.h"
#include "control/ConsoleText.h"
#include "control/ScheduleCommands.h"

namespace kestrune::control {
namespace {

CommandResult Done() {
  return {.Done = true, .Reason = ""};
}
CommandResult Refused(std::string reason) {
  return {.Done = false, .Reason = std::move(reason)};
}

constexpr const char* kStarting = "the program is still starting";
constexpr const char* kClosing = "the program is closing";

/// Why the unit takes no command now, as its windows would take no input; empty if it does.
std::string Unavailable(const recorder::Kestrune& unit) {
  if (unit.Run().ShuttingDown) return kClosing;
  if (unit.Run().FormLoading) return kStarting;
  return {};
}

}  // namespace

StatusReport UnitTarget::Status() {
  const recorder::RecordingState& recording = unit_.Recording();
  const radio::RadioState& radio = unit_.Radio();
  const radio::ReplyState& replies = unit_.Session().Replies();
  const radio::ChannelEntry& tuned = unit_.ChannelList().TunedEntry();
  const config::Settings& settings = unit_.CurrentSettings();
  const platform::AudioRecorder* recorder = unit_.Recorder();
  StatusReport report;
  report.Loading = unit_.Run().FormLoading;
  report.Unit = unit_.MultiUnit();
  report.Version = fmt::format("{}.{}.{}", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision);
  report.Port = unit_.PortNum();
  report.RadioID = radio.RadioID;
  report.ChannelNumber = radio.ChannelNumber;
  report.Station = tuned.Station;
  report.Genre = tuned.Genre;
  report.Artist = radio.CurrentArtist;
  report.Song = radio.CurrentSong;
  report.Recording = unit_.Window().lblRecording.Caption;
  report.RecordRequested = recording.RecordRequested;
  report.WaitingForNextSong = recording.WaitingForNextSong;
  report.CaptureLengthMs = recording.CaptureSlots[static_cast<std::size_t>(recording.CaptureSlot)].LengthMs;
  report.RecordedCount = recording.RecordedCount;
  report.TooShortCount = recording.TooShortCount;
  report.TooLongCount = recording.TooLongCount;
  report.RestrictedCount = recording.RestrictedCount;
  report.ChannelsLoading = radio.ChannelsLoading;
  report.ChannelCount = unit_.ChannelList().Table().ChannelCount();
  report.ActiveSchedule = unit_.Schedule().ActiveSchedule;
  report.FileFormat = settings.FileFormat;
  report.FormatDescription = unit_.Format().FileFormatString();
  report.FileDir = settings.FileDir;
  report.InputDevice = unit_.InputDeviceName();
  report.Satellite1 = replies.pcrSat1SignalQuality;
  report.Satellite2 = replies.pcrSat2SignalQuality;
  report.Terrestrial = replies.pcrTerSignalQuality;
  report.SamplesCaptured = recorder != nullptr ? recorder->FramesCaptured() : 0;
  report.SamplesLost = recorder != nullptr ? recorder->FramesLost() : 0;
  return report;
}

std::vector<ChannelReport> UnitTarget::Channels() {
  std::vector<ChannelReport> reports;
  const radio::ChannelTable& table = unit_.ChannelList().Table();
  for (std::int16_t slot = 1; slot <= table.ChannelCount(); ++slot) {
    const radio::ChannelEntry& entry = table.At(slot);
    reports.push_back({.Number = entry.Number,
                       .Station = entry.Station,
                       .Genre = entry.Genre,
                       .Artist = entry.Artist,
                       .Song = entry.Song});
  }
  std::stable_sort(reports.begin(), reports.end(),
                   [](const ChannelReport& a, const ChannelReport& b) { return a.Number < b.Number; });
  return reports;
}

CommandResult UnitTarget::Record() {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  if (!unit_.MayRecord()) return Refused("recording has been asked for already");
  unit_.cmdRecord();
  return Done();
}

CommandResult UnitTarget::Stop() {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  if (!unit_.MayStop()) return Refused("nothing is being recorded");
  unit_.cmdStop();
  return Done();
}

CommandResult UnitTarget::Tune(int channelNumber) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  if (unit_.Recording().GetRecordingStatus()) {
    return Refused("the channel cannot be changed while recording is under way; stop it first");
  }
  unit_.SetChannelNumber(static_cast<std::int16_t>(channelNumber));
  return Done();
}

CommandResult UnitTarget::Mute(bool muted) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  if (!unit_.SetMute(muted)) return Refused("the radio cannot be muted while recording is under way");
  return Done();
}

std::vector<std::string> UnitTarget::LogLines(std::size_t atMost) {
  const auto& lines = unit_.LogBook().List().Lines();
  const std::size_t count = std::min(atMost, lines.size());
  return {lines.end() - static_cast<std::ptrdiff_t>(count), lines.end()};
}

SettingResult UnitTarget::Get(std::string_view key) {
  if (std::optional<std::string> value = unit_.ReadSetting(key)) {
    return {.Done = true, .Reason = "", .Value = *std::move(value)};
  }
  return {.Done = false, .Reason = fmt::format("there is no setting \"{}\"", key), .Value = ""};
}

CommandResult UnitTarget::Set(std::string_view key, std::string_view value) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  const config::SettingOutcome outcome = unit_.ChangeSetting(key, value);
  if (!outcome.Done()) return Refused(outcome.Refusal);
  if (!outcome.Saved)
    return Refused("the new value holds until the end, but the settings could not be written");
  return Done();
}

UpdateResult UnitTarget::Update() {
  const auto refused = [](std::string reason) {
    return UpdateResult{.Done = false, .Reason = std::move(reason), .Report = {}};
  };
  if (std::string why = Unavailable(unit_); !why.empty()) return refused(std::move(why));
  const std::optional<recorder::UpdateAnswer> answer = unit_.AskForUpdate();
  if (!answer) return refused("an update check is under way already");
  if (unit_.Run().ShuttingDown) return refused(kClosing);
  if (answer->Result == config::kNotRetrieved) {
    return refused("Unable to retrieve current version number from the web.");
  }
  return {.Done = true,
          .Reason = "",
          .Report = {.Running = config::RunningVersionText(),
                     .Newer = answer->Result == config::kNewerVersion,
                     .DownloadAddress = answer->DownloadAddress}};
}

std::vector<ScheduleReport> UnitTarget::Schedule() {
  const radio::ChannelTable& table = unit_.ChannelList().Table();
  const schedule::SchedulerSettings settings = EntrySettings();
  ScheduleSources sources{
      .Now = unit_.Now(),
      .Station =
          [&table](std::int16_t channel) {
            const std::int16_t slot = table.ChannelIndex(channel);
            return slot == 0 ? std::string() : table.At(slot).Station;
          },
      // Before the start has read them, no entry counts.
      .IsSet = [this, &settings](
                   int number) { return !unit_.Run().FormLoading && schedule::IsStored(settings, number); },
      .SecondsUntil = [this](base::DateValue wall) { return unit_.TimeUntil(wall).count(); }};
  return ReportSchedule(unit_.Entries(), unit_.Schedule(), sources);
}

schedule::SchedulerSettings UnitTarget::EntrySettings() const {
  const config::SettingsSection& section = unit_.Section();
  return {.Read = [&section](std::string_view key,
                             std::string_view text) { return section.Text(key, text); },
          .Save = [&section](std::string_view key,
                             std::string_view text) { return section.SaveText(key, text); }};
}

CommandResult UnitTarget::ChangeEntry(
    const std::function<std::optional<std::string>(const StoredSchedule&)>& change) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  // The window's save would undo the change, or the change would be made under the user's hands.
  if (unit_.EntryEditors().HaveChanges())
    return Refused("the schedule is being edited in its window; save or close it first");
  StoredSchedule stored{.Settings = EntrySettings(), .Channels = unit_.SchedulerChannels(), .Now = unit_.Now()};
  if (std::optional<std::string> why = change(stored)) return Refused(*std::move(why));
  unit_.ReloadSchedule();
  unit_.EntryEditors().EntriesChanged();
  return Done();
}

CommandResult UnitTarget::SetSchedule(const ScheduleChange& change) {
  return ChangeEntry([&](const StoredSchedule& stored) { return SetEntry(stored, change); });
}

CommandResult UnitTarget::EnableSchedule(int number, bool enabled) {
  return ChangeEntry([&](const StoredSchedule& stored) {
    return enabled ? EnableEntry(stored, number) : DisableEntry(stored, number);
  });
}

CommandResult UnitTarget::ClearSchedule(int number) {
  return ChangeEntry([&](const StoredSchedule& stored) { return ClearEntry(stored, number); });
}

namespace {

std::vector<std::string> Fragments(const schedule::Restrictions& lists, schedule::RestrictList list) {
  std::vector<std::string> fragments;
  for (std::int16_t row = 1; row <= lists.RestrictCount(list); ++row)
    fragments.emplace_back(lists.Fragment(list, row));
  return fragments;
}

constexpr const char* kListsNotWritten = "the file of the lists could not be written";

}  // namespace

ListsReport UnitTarget::Lists() {
  using enum schedule::RestrictList;
  const schedule::Restrictions& lists = unit_.Restrictions();
  return {.GrabArtists = Fragments(lists, GrabArtists),
          .GrabSongs = Fragments(lists, GrabSongs),
          .KillArtists = Fragments(lists, KillArtists),
          .KillSongs = Fragments(lists, KillSongs)};
}

CommandResult UnitTarget::AddToList(schedule::RestrictList list, std::string_view text) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  const std::string_view fragment = base::Trim(text);
  const std::vector<std::string> present = Fragments(unit_.Restrictions(), list);
  if (present.size() >= schedule::Restrictions::kMaxRows) return Refused("the list is full");
  if (std::any_of(present.begin(), present.end(),
                  [fragment](const std::string& one) { return base::EqualsNoCase(one, fragment); })) {
    return Refused(fmt::format("{} is on the list already", Quoted(fragment)));
  }
  return unit_.GrabKill().Append(list, fragment) ? Done() : Refused(kListsNotWritten);
}

CommandResult UnitTarget::RemoveFromList(schedule::RestrictList list, std::string_view text) {
  if (std::string why = Unavailable(unit_); !why.empty()) return Refused(std::move(why));
  // The editor holds all lists as they were when it opened, and its save would bring the entry back.
  if (unit_.RestrictListEditor().IsLoaded()) {
    return Refused("the lists are being edited in their window; close it first");
  }
  const schedule::Restrictions::Removal removed = unit_.Restrictions().Remove(list, text);
  if (!removed.Failure.empty()) return Refused(removed.Failure);
  return removed.Count > 0 ? Done() : Refused(fmt::format("{} is not on the list", Quoted(base::Trim(text))));
}

CommandResult UnitTarget::Quit() {
  if (unit_.Run().ShuttingDown) return Refused(kClosing);
  unit_.RequestClose();
  return Done();
}

}  // namespace kestrune::control
