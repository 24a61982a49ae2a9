#include "presenters/Notices.h"

#include <utility>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Ignored.h"
#include "base/Numbers.h"
#include "base/OneLine.h"
#include "base/PathText.h"
#include "base/SameDay.h"
#include "history/Advice.h"
#include "presenters/MomentText.h"
#include "presenters/NoticeText.h"
#include "recorder/Snapshot.h"

namespace kestrune::presenters {
namespace {

using platform::Notice;
using platform::SongFate;
using recorder::EndedSong;
using recorder::Problem;
using recorder::State;

constexpr std::chrono::milliseconds kFollowInterval{500};

// The subjects of the messages.
constexpr const char* kKept = "kept";
constexpr const char* kDropped = "dropped";
constexpr const char* kEvent = "event";
constexpr const char* kProblem = "problem";

std::string CountText(std::int16_t songs) {
  if (songs == 0) return "No song was recorded.";
  return songs == 1 ? "1 song was recorded." : fmt::format("{} songs were recorded.", songs);
}

/// Whether a person may have wanted a song that the recording has left out.
bool IsWorthOffering(const EndedSong& song) {
  return (song.Fate == SongFate::TooShort || song.Fate == SongFate::TooLong) && !song.Path.empty();
}

}  // namespace

Notices::Notices(recorder::Kestrune& unit, const Outside& outside)
    : unit_(unit),
      loop_(outside.Loop),
      shell_(outside.Shell),
      board_(outside.Notifications, outside.Windows),
      hints_(unit, outside.Loop, board_),
      tmrFollow_(outside.Loop.MakeTimer(kFollowInterval, [this] { Follow(); })) {
  tmrFollow_->SetEnabled(true);
}

Notices::~Notices() = default;

void Notices::Follow() {
  const State& state = unit_.State();
  if (state.Run.ShuttingDown) return;
  board_.Follow();
  FollowSongs(state);
  FollowEvents(state);
  FollowProblems(state);
  hints_.Follow();
}

void Notices::FollowSongs(const State& state) {
  const EndedSong* kept = nullptr;
  const EndedSong* dropped = nullptr;
  const auto& songs = state.Recording.EndedSongs.Songs();
  // From the oldest on, so that the newest has the last word.
  for (auto song = songs.rbegin(); song != songs.rend(); ++song) {
    if (song->Number <= song_) continue;
    song_ = song->Number;
    const bool asked = hints_.Awaited(*song);
    if (!asked && !state.Settings.NotifySongs) continue;
    if (platform::IsKept(song->Fate)) kept = &*song;
    if (IsWorthOffering(*song)) dropped = &*song;
  }
  if (kept != nullptr) SayKept(*kept);
  if (dropped != nullptr) SayDropped(*dropped);
}

void Notices::SayKept(const EndedSong& song) {
  std::string text = SongText(song.Artist, song.Song);
  if (song.Fate == SongFate::KeptIncomplete) text += " (Incomplete)";
  if (song.Fate == SongFate::KeptUnnamed)
    text += fmt::format("\nIts file could not be renamed: {}", base::OneLine(song.Path));
  board_.Show({.Subject = kKept,
               .Title = "Song kept",
               .Text = text,
               .Offers = {ShowInFolder(base::FolderOf(song.Path))}});
}

void Notices::SayDropped(const EndedSong& song) {
  board_.Show({.Subject = kDropped,
               .Title = "Song not kept",
               .Text = fmt::format("{}: {}, {}", SongText(song.Artist, song.Song),
                                   history::FateText(song.Fate), base::SixtiesText(song.LengthMs / 1000)),
               .Offers = {{.Label = "Keep", .Do = [this, song] { KeepFile(song); }}},
               .Urgency = Notice::Weight::Light});
}

void Notices::KeepFile(const EndedSong& song) {
  unit_.Wishes().KeepFile(song.Path, [this, song, alive = std::weak_ptr(alive_)](const base::Result& kept) {
    // Of what was kept the next look tells.
    if (alive.expired() || kept.Ok()) return;
    board_.Show({.Subject = kDropped,
                 .Title = "Song not kept",
                 .Text = fmt::format("{}: {}.", SongText(song.Artist, song.Song), kept.Cause())});
  });
}

NoticeBoard::Offer Notices::ShowInFolder(std::string folder) {
  return {.Label = "Show in Folder",
          .Do = [this, folder = std::move(folder)] { base::Ignored(shell_.Open(folder)); }};
}

void Notices::FollowEvents(const State& state) {
  const std::int16_t active = state.Schedule.ActiveSchedule;
  const bool ended = state.EndedEvent.Number > endedEvents_;
  const bool began = active != 0 && active != event_;
  endedEvents_ = state.EndedEvent.Number;
  event_ = active;
  if (!state.Settings.NotifyEvents) return;
  if (began)
    return SayBegan(state, ended ? fmt::format("Event {} ended. {}\n", state.EndedEvent.Event,
                                               CountText(state.EndedEvent.Songs))
                                 : std::string());
  if (ended) SayEnded(state);
}

void Notices::SayBegan(const State& state, std::string before) {
  const base::DateValue until = state.Schedule.RemainingUntil;
  const bool today = base::SameDay(until, unit_.Now());
  const radio::ChannelEntry& tuned = unit_.Snapshot().Tuned;
  board_.Show(
      {.Subject = kEvent,
       .Title = fmt::format("Event {} began", event_),
       .Text = fmt::format("{}Recording {} until {}.", before, ChannelText(tuned.Number, tuned.Station),
                           base::FormatDate(until, today ? "h:nn am/pm" : "mmm d, h:nn am/pm"))});
}

void Notices::SayEnded(const State& state) {
  NoticeBoard::Message message{.Subject = kEvent,
                               .Title = fmt::format("Event {} ended", state.EndedEvent.Event),
                               .Text = CountText(state.EndedEvent.Songs)};
  if (state.EndedEvent.Songs > 0) message.Offers.push_back(ShowInFolder(state.Settings.FileDir));
  board_.Show(message);
}

void Notices::FollowProblems(const State& state) {
  if (!state.Settings.NotifyProblems || !state.Settings.Watch) {
    problem_ = toldProblem_ = Problem::None;
    return board_.Withdraw(kProblem);
  }
  const Problem now = state.Watch.Worst();
  if (now != problem_) {
    problem_ = now;
    problemSince_ = loop_.SteadyNow();
  }
  if (problem_ == toldProblem_ || loop_.SteadyNow() - problemSince_ < kLasting) return;
  SayProblem(state);
  toldProblem_ = problem_;
  toldWarning_ = state.Watch.Warning();
}

void Notices::SayProblem(const State& state) {
  if (problem_ == Problem::None) {
    return board_.Show({.Subject = kProblem,
                        .Title = "The problem is over",
                        .Text = fmt::format("It was: {}", base::OneLine(toldWarning_))});
  }
  board_.Show({.Subject = kProblem,
               .Title = "A problem",
               .Text = base::OneLine(state.Watch.Warning()),
               .Offers = {},
               .Urgency = Notice::Weight::Heavy});
}

}  // namespace kestrune::presenters
