#include "control/UnitTarget.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/Text.h"
#include "config/update/VersionFile.h"
#include "control/ConsoleText.h"
#include "control/CutJson.h"
#include "control/ScheduleCommands.h"
#include "control/ShelfJson.h"
#include "control/StatusOf.h"
#include "history/Since.h"

namespace kestrune::control {
namespace {

using base::Result;

/// Since when a question about the record asks; nothing if it asks for all.
Result ReadSince(const std::string& words, int days, base::DateValue now,
                 std::optional<base::DateValue>& since) {
  if (days != 0) since = now.AddDays(-days);
  if (words.empty()) return Result::Done();
  const history::SinceRead read = history::ReadSince(words, now);
  if (!read.Error.empty()) return Result::Failed(read.Error);
  since = read.Since;
  return Result::Done();
}

}  // namespace

StatusReport UnitTarget::Status() {
  return StatusOf(unit_.Snapshot());
}

std::vector<ChannelReport> UnitTarget::Channels() {
  std::vector<ChannelReport> reports;
  const radio::ChannelTable& table = unit_.Parts().Channels.Table();
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

void UnitTarget::Record(Answered answered) {
  unit_.Wishes().Record(std::move(answered));
}

void UnitTarget::Stop(Answered answered) {
  unit_.Wishes().Stop(std::move(answered));
}

void UnitTarget::Tune(int channelNumber, Answered answered) {
  unit_.Wishes().Tune(static_cast<std::int16_t>(channelNumber), std::move(answered));
}

void UnitTarget::Mute(bool muted, Answered answered) {
  unit_.Wishes().Mute(muted, std::move(answered));
}

std::vector<ShelvedReport> UnitTarget::Shelf() {
  return ShelfOf(unit_.Parts().Shelving.Songs());
}

void UnitTarget::Keep(int number, Answered answered) {
  unit_.Wishes().Keep(static_cast<std::size_t>(number), std::move(answered));
}

void UnitTarget::KeepCurrent(Answered answered) {
  unit_.Wishes().KeepCurrent(std::move(answered));
}

std::vector<std::string> UnitTarget::LogLines(std::size_t atMost) {
  const auto& lines = unit_.Parts().Log.List().Lines();
  const std::size_t count = std::min(atMost, lines.size());
  return {lines.end() - static_cast<std::ptrdiff_t>(count), lines.end()};
}

SettingResult UnitTarget::Get(std::string_view key) {
  if (std::optional<std::string> value = unit_.Parts().Settings.Get(key)) {
    return {.Done = true, .Reason = "", .Value = *std::move(value)};
  }
  return {.Done = false, .Reason = fmt::format("there is no setting \"{}\"", key), .Value = ""};
}

void UnitTarget::Set(std::string_view key, std::string_view value, Answered answered) {
  unit_.Wishes().ChangeSetting(std::string(key), std::string(value), std::move(answered));
}

void UnitTarget::Update(std::function<void(const UpdateResult&)> answered) {
  const auto refused = [](std::string reason) {
    return UpdateResult{.Done = false, .Reason = std::move(reason), .Report = {}};
  };
  unit_.Wishes().AskForUpdate(
      [answered = std::move(answered), refused](const Result& asked, const recorder::UpdateAnswer& answer) {
        if (!asked.Ok()) return answered(refused(asked.Cause()));
        if (answer.Result == config::kNotRetrieved) {
          return answered(refused("Unable to retrieve current version number from the web."));
        }
        answered({.Done = true,
                  .Reason = "",
                  .Report = {.Running = config::RunningVersionText(),
                             .Newer = answer.Result == config::kNewerVersion,
                             .DownloadAddress = answer.DownloadAddress}});
      });
}

std::vector<ScheduleReport> UnitTarget::Schedule() {
  const schedule::SchedulerSettings settings = EntrySettings();
  ScheduleSources sources{
      .Now = unit_.Now(),
      .Station = [this](std::int16_t channel) { return StationOf(channel); },
      // Before the start has read them, no entry counts.
      .IsSet =
          [this, &settings](int number) {
            return !unit_.State().Run.FormLoading && schedule::IsStored(settings, number);
          },
      .SecondsUntil = [this](base::DateValue wall) { return unit_.TimeUntil(wall).count(); }};
  return ReportSchedule(unit_.State().Entries, unit_.State().Schedule, sources);
}

HintsResult UnitTarget::Hints() {
  if (!unit_.State().Settings.Hints)
    return {.Done = false, .Reason = "hints are switched off; set Hints to True", .Hints = {}};
  HintsResult result{.Done = true, .Reason = "", .Hints = {}};
  for (const recorder::Hint& hint : unit_.State().Hints) {
    result.Hints.push_back({.Number = hint.Number,
                            .Began = hint.Began,
                            .Channel = hint.Channel,
                            .Station = hint.Station,
                            .Artist = hint.Artist,
                            .Song = hint.Song,
                            .Text = recorder::HintText(hint)});
  }
  return result;
}

std::string UnitTarget::StationOf(std::int16_t channel) const {
  const radio::ChannelTable& table = unit_.Parts().Channels.Table();
  const std::int16_t slot = table.ChannelIndex(channel);
  return slot == 0 ? std::string() : table.At(slot).Station;
}

schedule::SchedulerSettings UnitTarget::EntrySettings() const {
  const config::SettingsSection& section = unit_.Parts().Section;
  return {.Read = [&section](std::string_view key, std::string_view text) { return section.Text(key, text); },
          .Save = [&section](std::string_view key,
                             std::string_view text) { return section.SaveText(key, text); }};
}

void UnitTarget::ChangeEntry(std::function<std::optional<std::string>(const StoredSchedule&)> change,
                             Answered answered) {
  unit_.Wishes().Ask(
      [&unit = unit_, settings = EntrySettings(), change = std::move(change)] {
        // The window's save would undo the change, or the change would be made under the user's hands.
        if (unit.Parts().EntryEditors.HaveChanges())
          return Result::Failed("the schedule is being edited in its window; save or close it first");
        const StoredSchedule stored{
            .Settings = settings, .Channels = unit.SchedulerChannels(), .Now = unit.Now()};
        if (const std::optional<std::string> why = change(stored)) return Result::Failed(*why);
        unit.ReloadSchedule();
        unit.Parts().EntryEditors.EntriesChanged();
        return Result::Done();
      },
      std::move(answered));
}

void UnitTarget::SetSchedule(const ScheduleChange& change, Answered answered) {
  ChangeEntry([change](const StoredSchedule& stored) { return SetEntry(stored, change); },
              std::move(answered));
}

void UnitTarget::EnableSchedule(int number, bool enabled, Answered answered) {
  ChangeEntry(
      [number, enabled](const StoredSchedule& stored) {
        return enabled ? EnableEntry(stored, number) : DisableEntry(stored, number);
      },
      std::move(answered));
}

void UnitTarget::ClearSchedule(int number, Answered answered) {
  ChangeEntry([number](const StoredSchedule& stored) { return ClearEntry(stored, number); },
              std::move(answered));
}

namespace {

std::vector<std::string> Fragments(const schedule::Restrictions& lists, schedule::RestrictList list) {
  std::vector<std::string> fragments;
  for (std::int16_t row = 1; row <= lists.RestrictCount(list); ++row)
    fragments.emplace_back(lists.Fragment(list, row));
  return fragments;
}

}  // namespace

ListsReport UnitTarget::Lists() {
  using enum schedule::RestrictList;
  const schedule::Restrictions& lists = unit_.Parts().Restrictions;
  return {.GrabArtists = Fragments(lists, GrabArtists),
          .GrabSongs = Fragments(lists, GrabSongs),
          .KillArtists = Fragments(lists, KillArtists),
          .KillSongs = Fragments(lists, KillSongs)};
}

void UnitTarget::AddToList(schedule::RestrictList list, std::string_view text, Answered answered) {
  unit_.Wishes().Ask(
      [&unit = unit_, list, fragment = std::string(base::Trim(text))] {
        const std::vector<std::string> present = Fragments(unit.Parts().Restrictions, list);
        if (present.size() >= schedule::Restrictions::kMaxRows) return Result::Failed("the list is full");
        if (std::any_of(present.begin(), present.end(),
                        [&fragment](const std::string& one) { return base::EqualsNoCase(one, fragment); })) {
          return Result::Failed(fmt::format("{} is on the list already", Quoted(fragment)));
        }
        return unit.Parts().Restrictions.Add(list, fragment);
      },
      std::move(answered));
}

void UnitTarget::RemoveFromList(schedule::RestrictList list, std::string_view text, Answered answered) {
  unit_.Wishes().Ask(
      [&unit = unit_, list, fragment = std::string(base::Trim(text))] {
        // The editor holds all lists as they were when it opened, and its save would bring the entry back.
        if (unit.Parts().Restrictions.BeingEdited()) {
          return Result::Failed("the lists are being edited in their window; close it first");
        }
        const schedule::Restrictions::Removal removed = unit.Parts().Restrictions.Remove(list, fragment);
        if (!removed.Failure.empty()) return Result::Failed(removed.Failure);
        if (removed.Count > 0) return Result::Done();
        return Result::Failed(fmt::format("{} is not on the list", Quoted(fragment)));
      },
      std::move(answered));
}

void UnitTarget::Report(const ReportQuestion& question, ReportAnswered answered) {
  const base::DateValue now = unit_.Now();
  history::SinceRead since{.Since = history::LastNight(now), .Error = {}};
  if (!question.Since.empty()) since = history::ReadSince(question.Since, now);
  if (!since.Error.empty()) return answered(Result::Failed(since.Error), {});
  unit_.Parts().History.AskReport(since.Since, std::move(answered));
}

void UnitTarget::History(const HistoryQuestion& question, HistoryAnswered answered) {
  platform::HistorySearch search{.Text = question.Text,
                                 .Channel = static_cast<std::int16_t>(question.Channel),
                                 .Since = {},
                                 .Limit = question.Limit};
  const Result read = ReadSince(question.Since, question.Days, unit_.Now(), search.Since);
  if (!read.Ok()) return answered(read, {});
  unit_.Parts().History.Search(std::move(search), std::move(answered));
}

void UnitTarget::MostPlayed(const MostPlayedQuestion& question, MostPlayedAnswered answered) {
  platform::MostPlayedSearch search{.As = question.As,
                                    .Channel = static_cast<std::int16_t>(question.Channel),
                                    .Since = {},
                                    .Limit = question.Limit};
  const Result read = ReadSince(question.Since, question.Days, unit_.Now(), search.Since);
  if (!read.Ok()) return answered(read, {});
  unit_.Parts().History.CountPlays(search, std::move(answered));
}

void UnitTarget::Quit(Answered answered) {
  unit_.Wishes().Close(std::move(answered));
}

void UnitTarget::Cuts(const CutsQuestion& question, CutsAnswered answered) {
  unit_.Parts().History.AskCuts(
      {.Channel = static_cast<std::int16_t>(question.Channel), .Limit = question.Limit},
      [answered = std::move(answered)](const Result& asked, const std::vector<platform::HistorySong>& songs) {
        answered(asked, CutsOf(songs));
      });
}

std::vector<StationLagReport> UnitTarget::StationLags(int channel) {
  std::vector<StationLagReport> reports;
  recorder::StationLags& lags = unit_.Parts().StationLags;
  for (const std::int16_t learned : lags.LearnedChannels()) {
    if (channel != 0 && learned != channel) continue;
    const cut::LagModel& model = *lags.Learned(learned);
    reports.push_back({.Channel = learned,
                       .Station = StationOf(learned),
                       .LagMs = model.MedianMs(),
                       .JitterMs = model.JitterMs(),
                       .Changes = model.Changes()});
  }
  return reports;
}

}  // namespace kestrune::control
