#include "history/History.h"

#include <algorithm>
#include <utility>

#include "base/OneLine.h"

namespace kestrune::history {
namespace {

using platform::HistoryEvent;
using platform::HistoryIncident;
using platform::HistoryRows;
using platform::IncidentKind;

/// So many plays are handed over without waiting any longer: a radio whose texts change all the time.
constexpr std::size_t kManyPlays = 500;

HistoryEvent RowOf(const EventStart& event) {
  return {.Entry = event.Entry,
          .Due = event.Due,
          .PlannedSeconds = event.PlannedSeconds,
          .Channel = event.Channel,
          .Station = event.Station,
          .WholeSongs = event.WholeSongs,
          .Began = {},
          .Ended = {},
          .Kept = 0,
          .Dropped = 0,
          .WhyNot = {}};
}

}  // namespace

History::History(platform::HistoryStore& store, base::EventLoop& loop)
    : store_(store),
      loop_(loop),
      tmrSoon_(loop.MakeTimer(kSoon, [this] { HandOver(); })),
      tmrBeat_(loop.MakeTimer(kBeat, [this] { HandOver(); })) {}

History::~History() = default;

void History::Begin() {
  const base::DateValue now = loop_.Now();
  run_ = {.Began = now, .Alive = now, .Closed = false};
  tmrBeat_->SetEnabled(true);
  HandOver();
}

void History::Close(std::string_view why) {
  if (!run_) return;
  for (platform::HistoryPlay& play : onAir_.End()) rows_.Plays.push_back(std::move(play));
  if (event_) EventEnded(event_->Kept, event_->Dropped, why);
  for (int kind = 0; kind < platform::kIncidentKinds; ++kind) IncidentEnded(static_cast<IncidentKind>(kind));
  run_->Closed = true;
  HandOver();
  run_.reset();
  tmrSoon_->SetEnabled(false);
  tmrBeat_->SetEnabled(false);
}

void History::SongEnded(platform::HistorySong song) {
  if (!run_) return;
  rows_.Songs.push_back(std::move(song));
  HandOverSoon();
}

void History::SongMoved(std::string from, std::string to, std::optional<platform::SongFate> fate) {
  if (!run_) return;
  platform::HistoryMove move{.From = std::move(from), .To = std::move(to), .Fate = fate};
  if (!platform::Moved(rows_.Songs, move)) rows_.Moves.push_back(std::move(move));
  HandOverSoon();
}

void History::EventBegan(const EventStart& event) {
  if (!run_) return;
  if (event_) EventEnded(event_->Kept, event_->Dropped, "another event began");
  event_ = RowOf(event);
  event_->Began = loop_.Now();
  NoteEvent();
}

void History::EventChanged(const EventStart& event) {
  if (!event_) return;
  event_->PlannedSeconds = event.PlannedSeconds;
  event_->Channel = event.Channel;
  event_->Station = event.Station;
  event_->WholeSongs = event.WholeSongs;
  NoteEvent();
}

void History::EventEnded(int kept, int dropped, std::string_view why) {
  if (!event_) return;
  event_->Ended = loop_.Now();
  event_->Kept = kept;
  event_->Dropped = dropped;
  event_->WhyNot = base::OneLine(why);
  NoteEvent();
  event_.reset();
}

void History::EventMissed(const EventStart& event, std::string_view why) {
  if (!run_) return;
  HistoryEvent row = RowOf(event);
  row.WhyNot = base::OneLine(why);
  rows_.Events.push_back(std::move(row));
  HandOverSoon();
}

void History::NoteEvent() {
  rows_.Events.push_back(*event_);
  HandOverSoon();
}

void History::IncidentBegan(IncidentKind kind, std::string_view cause, std::chrono::seconds already) {
  if (!run_) return;
  std::optional<OpenIncident>& open = Open(kind);
  if (!open) {
    const base::DateValue began = loop_.Now().AddSeconds(-already.count());
    open = OpenIncident{.Row = {.Kind = kind, .Began = began, .Ended = {}, .Seconds = 0, .Cause = {}},
                        .Since = loop_.SteadyNow() - already};
  }
  open->Row.Cause = base::OneLine(cause);
  Note(open->Row);
}

void History::IncidentEnded(IncidentKind kind) {
  std::optional<OpenIncident>& open = Open(kind);
  if (!open) return;
  // A clock that was set back must not let it end before it began.
  open->Row.Ended = std::max(loop_.Now(), open->Row.Began);
  open->Row.Seconds = std::chrono::round<std::chrono::seconds>(loop_.SteadyNow() - open->Since).count();
  Note(std::move(open->Row));
  open.reset();
}

void History::IncidentHappened(IncidentKind kind, base::DateValue from, base::DateValue to,
                               std::chrono::seconds lasted, std::string_view cause) {
  if (!run_) return;
  Note({.Kind = kind, .Began = from, .Ended = to, .Seconds = lasted.count(), .Cause = base::OneLine(cause)});
}

void History::Note(HistoryIncident incident) {
  rows_.Incidents.push_back(std::move(incident));
  HandOverSoon();
}

void History::Heard(std::int16_t channel, const Playing& playing) {
  if (!run_) return;
  auto ended = onAir_.Heard(channel, playing, loop_.Now());
  if (!ended) return;
  rows_.Plays.push_back(*std::move(ended));
  if (rows_.Plays.size() >= kManyPlays) HandOverSoon();
}

void History::LagLearned(platform::HistoryLag lag) {
  if (!run_) return;
  const auto older =
      std::find_if(rows_.Lags.begin(), rows_.Lags.end(),
                   [&lag](const platform::HistoryLag& one) { return one.Channel == lag.Channel; });
  if (older == rows_.Lags.end()) {
    rows_.Lags.push_back(std::move(lag));
  } else {
    *older = std::move(lag);
  }
}

void History::HandOverSoon() {
  tmrSoon_->SetEnabled(true);
}

void History::HandOver() {
  tmrSoon_->SetEnabled(false);
  if (!run_) return;
  run_->Alive = loop_.Now();
  rows_.Runs.push_back(*run_);
  store_.Write(std::exchange(rows_, {}));
}

void History::AskReport(base::DateValue from, base::DateValue to, ReportAnswer answer) {
  HandOver();
  store_.ReadSpan(
      from, to,
      [from, to, running = event_, answer = std::move(answer)](const base::Result& asked,
                                                               const HistoryRows& rows) {
        Report report{.From = from, .To = to, .Events = {}, .OtherSongs = {}, .Incidents = {}, .Advice = {}};
        if (asked.Ok()) report = MakeReport(rows, from, to, running);
        answer(asked, report);
      });
}

void History::Search(platform::HistorySearch search, platform::HistoryStore::PlaysAnswer answer) {
  HandOver();
  store_.Search(std::move(search), std::move(answer));
}

void History::CountPlays(platform::MostPlayedSearch search, platform::HistoryStore::CountsAnswer answer) {
  HandOver();
  store_.CountPlays(search, std::move(answer));
}

void History::AskCuts(platform::CutSearch search, platform::HistoryStore::SongsAnswer answer) {
  HandOver();
  store_.ReadCuts(search, std::move(answer));
}

void History::AskSongs(base::DateValue from, base::DateValue to, platform::HistoryStore::SongsAnswer answer) {
  HandOver();
  store_.ReadSpan(from, to, [answer = std::move(answer)](const base::Result& asked, const HistoryRows& rows) {
    answer(asked, rows.Songs);
  });
}

void History::AskFolder(std::string folder, platform::HistoryStore::SongsAnswer answer) {
  HandOver();
  store_.ReadFolder(std::move(folder), std::move(answer));
}

void History::AskLags(platform::HistoryStore::LagsAnswer answer) {
  HandOver();
  store_.ReadLags(std::move(answer));
}

}  // namespace kestrune::history
