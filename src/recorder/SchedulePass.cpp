#include "recorder/SchedulePass.h"

#include <optional>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "schedule/entries/MissedRuns.h"
#include "schedule/entries/NextRun.h"

namespace kestrune::recorder {
namespace {

// Nothing that the radio says within these ticks of a new channel counts as a change of song.
constexpr std::int16_t kSettleTicks = 4;

}  // namespace

SchedulePass::SchedulePass(State& state, const Parts& parts, base::Journal& log, const base::EventLoop& loop,
                           base::Timer& tmrUpdate)
    : entries_(state.Entries),
      schedule_(state.Schedule),
      state_(state.Recording),
      clock_(state.Clock),
      radio_(state.Radio),
      channels_(parts.Channels),
      commands_(parts.Commands),
      log_(log),
      loop_(loop),
      tmrUpdate_(tmrUpdate),
      chronicle_(parts.Chronicle),
      endedEvent_(state.EndedEvent),
      search_(state.Entries, [&loop] { return loop.Now(); }) {}

void SchedulePass::Run() {
  LogMissedRuns();
  std::int16_t due = 0;
  if (const auto found = search_.Find()) {
    due = found->Due;
    schedule_.RemainingUntil = found->RemainingUntil;
  }
  const bool ends = schedule_.ActiveSchedule != 0 && due != schedule_.ActiveSchedule;
  if (ends) EndEvent(due);

  // The two commands turn the timer on, and the pass is not over.
  tmrUpdate_.SetEnabled(false);
  if (due == 0) {
    if (ends) CutForTheUser();
    return;
  }
  if (schedule_.ActiveSchedule == 0) {
    // A recording by hand gives way, and the event begins one pass later.
    if (state_.Phase != Phase::Idle) return commands_.cmdStop();
    // A piece that has still to be finished would be lost in the start of the event, which goes on with it.
    if (state_.StopPending) return;
    BeginEvent(due);
    tmrUpdate_.SetEnabled(false);
  }
  if (due != schedule_.ActiveSchedule) return;
  FollowEntry(due);
  if (state_.Phase == Phase::Idle && !state_.StopPending) Resume(due);
}

void SchedulePass::LogMissedRuns() {
  const base::DateValue now = loop_.Now();
  const auto text = [](base::DateValue moment) { return base::FormatDate(moment, "mmm d, h:nn:ss am/pm"); };
  if (lastPass_) {
    for (const std::int16_t number : schedule::MissedRuns(entries_, *lastPass_, now)) {
      if (number == schedule_.ActiveSchedule) continue;
      log_.DoLog(fmt::format("Scheduled event {} missed - the clock went from {} to {}", number,
                             text(*lastPass_), text(now)));
      const schedule::ScheduleEntry& entry = Entry(number);
      chronicle_.EventMissed(number, entry,
                             schedule::NextStart(entry, lastPass_->AddSeconds(1)).value_or(*lastPass_),
                             fmt::format("the clock went from {} to {}", text(*lastPass_), text(now)));
    }
  }
  lastPass_ = now;
}

base::DateValue SchedulePass::Until() const {
  return loop_.WallAfter(base::TimeUntil(loop_, schedule_.RemainingUntil));
}

void SchedulePass::EndEvent(std::int16_t next) {
  settleCuts_();
  const bool piece = state_.IsRecording() && state_.Incomplete;
  commands_.cmdStop();
  // What began as a piece is kept as one, even if the entry has been changed to whole songs since.
  if (piece) state_.StopPending = state_.Incomplete = true;
  const std::int16_t ended = schedule_.ActiveSchedule;
  schedule_.ActiveSchedule = 0;
  clock_.EventMarkShown = false;
  log_.DoLog(fmt::format("Scheduled event {} completed - {} songs recorded", ended, state_.RecordedCount));
  chronicle_.EventEnded(state_, next);
  endedEvent_ = {.Number = endedEvent_.Number + 1, .Event = ended, .Songs = state_.RecordedCount};
}

Chronicle::Event SchedulePass::EventOf(std::int16_t number) const {
  const schedule::ScheduleEntry& entry = Entry(number);
  return {.Number = number,
          .Entry = entry,
          .Until = schedule_.RemainingUntil,
          .Station = channels_.Table().At(channels_.Table().ChannelIndex(entry.Channel)).Station};
}

void SchedulePass::CutForTheUser() {
  if (state_.StopPending) return;  // which cuts too
  state_.ForceSongChange = state_.SkipSongDelay = true;
  state_.SongBoundarySeen = false;
  state_.LastArtist = state_.LastSong = kNoSong;
}

void SchedulePass::BeginEvent(std::int16_t due) {
  const schedule::ScheduleEntry& entry = Entry(due);
  log_.DoLog(fmt::format("Scheduled event {} beginning on channel {} until {}", due, entry.Channel,
                         base::FormatDate(Until(), "mmm d, h:nn:ss am/pm")));
  channels_.SetChannelNumber(entry.Channel);
  schedule_.SchedEndTime = entry.EndDate;
  TakeModes(entry);
  state_.SongBoundarySeen = false;
  if (schedule_.SchedIntegrel) log_.DoLog("Scheduled event is utilizing Integrel");
  if (schedule_.SchedSievanceGrab || schedule_.SchedSievanceKill) {
    log_.DoLog("Scheduled event is utilizing Grab/Kill lists");
  }
  if (!schedule_.SchedCleftune) log_.DoLog("Scheduled event is NOT utilizing Cleftune");
  clock_.SecondsLeft.reset();
  clock_.EventMarkShown = true;
  // Before the recording starts, which already asks the entry for its modes and its bit rate.
  schedule_.ActiveSchedule = due;
  chronicle_.EventBegan(EventOf(due));
  commands_.cmdRecord();
  // A piece begins with a cut of its own: the capture in hand is not of the event.
  if (state_.StartPending) state_.ForceSongChange = true;
  state_.SettleTicks = kSettleTicks;
  state_.WaitingForNextSong = true;
  TakeSongAsOld();
}

void SchedulePass::Resume(std::int16_t due) {
  log_.DoLog(fmt::format("Scheduled event {} recording again", due));
  const std::int16_t recorded = state_.RecordedCount;
  const std::int16_t tooShort = state_.TooShortCount;
  const std::int16_t tooLong = state_.TooLongCount;
  const std::int16_t restricted = state_.RestrictedCount;
  commands_.cmdRecord();
  tmrUpdate_.SetEnabled(false);
  // It is the same event, and its last line counts all its songs.
  state_.RecordedCount = recorded;
  state_.TooShortCount = tooShort;
  state_.TooLongCount = tooLong;
  state_.RestrictedCount = restricted;
}

void SchedulePass::FollowEntry(std::int16_t due) {
  const schedule::ScheduleEntry& entry = Entry(due);
  const bool moved = channels_.ChannelNumber() != entry.Channel;
  if (moved) {
    state_.SettleTicks = kSettleTicks;
    state_.WaitingForNextSong = true;
  }
  const bool otherEnd = schedule_.SchedEndTime != entry.EndDate;
  if (moved || otherEnd) chronicle_.EventChanged(EventOf(due));
  if (otherEnd) {
    log_.DoLog("Schedule changed, now recording until " + base::FormatDate(Until(), "mmm d, h:nn am/pm"));
    schedule_.SchedEndTime = entry.EndDate;
  }
  TakeModes(entry);
  if (moved) MoveToChannel(entry);
}

void SchedulePass::MoveToChannel(const schedule::ScheduleEntry& entry) {
  commands_.cmdStop();
  tmrUpdate_.SetEnabled(false);
  log_.DoLog(fmt::format("Schedule changed, now recording channel {}", entry.Channel));
  channels_.SetChannelNumber(entry.Channel);
  commands_.cmdRecord();
  // The next blink brings it back.
  clock_.EventMarkShown = false;
  TakeSongAsOld();
}

void SchedulePass::TakeModes(const schedule::ScheduleEntry& entry) {
  schedule_.SchedIntegrel = entry.Integrel;
  schedule_.SchedCleftune = entry.Cleftune;
  schedule_.SchedSievanceGrab = entry.MatchGrab;
  schedule_.SchedSievanceKill = entry.MatchKill;
}

void SchedulePass::TakeSongAsOld() {
  const std::int16_t slot = channels_.Table().ChannelIndex(channels_.ChannelNumber());
  const radio::ChannelEntry& playing = channels_.Table().At(slot);
  state_.LastArtist = playing.Artist;
  state_.LastSong = playing.Song;
  state_.LastGenre = playing.Genre;
  state_.LastStation = playing.Station;
  // The slot here, where the update cycle keeps the channel's number.
  state_.LastChannel = slot;
  radio_.CurrentArtist = state_.LastArtist;
  radio_.CurrentSong = state_.LastSong;
}

}  // namespace kestrune::recorder
