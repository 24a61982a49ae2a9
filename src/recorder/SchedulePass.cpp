#include "recorder/SchedulePass.h"

#include <optional>

#include <fmt/format.h>

#include "base/DatePattern.h"

namespace kestrune::recorder {
namespace {

// Nothing that the radio says within these ticks of a new channel counts as a change of song.
constexpr std::int16_t kSettleTicks = 4;

}  // namespace

SchedulePass::SchedulePass(State& state, radio::Channels& channels, RecordCommands& commands,
                           base::Journal& log, const base::EventLoop& loop, base::Timer& tmrUpdate)
    : entries_(state.Entries),
      schedule_(state.Schedule),
      state_(state.Recording),
      clock_(state.Clock),
      radio_(state.Radio),
      channels_(channels),
      commands_(commands),
      log_(log),
      tmrUpdate_(tmrUpdate),
      search_(state.Entries, [&loop] { return loop.Now(); }) {}

void SchedulePass::Run() {
  std::int16_t due = 0;
  if (const auto found = search_.Find()) {
    due = found->Due;
    schedule_.RemainingUntil = found->RemainingUntil;
  }
  if (schedule_.ActiveSchedule != 0 && due != schedule_.ActiveSchedule) EndEvent();

  // The two commands turn the timer on, and the pass is not over.
  tmrUpdate_.SetEnabled(false);
  if (due == 0) return;
  if (schedule_.ActiveSchedule == 0) {
    // A recording by hand gives way, and the event begins one pass later.
    if (state_.Phase != Phase::Idle) return commands_.cmdStop();
    BeginEvent(due);
    tmrUpdate_.SetEnabled(false);
  }
  if (due == schedule_.ActiveSchedule) FollowEntry(due);
}

void SchedulePass::EndEvent() {
  commands_.cmdStop();
  const std::int16_t ended = schedule_.ActiveSchedule;
  schedule_.ActiveSchedule = 0;
  clock_.EventMarkShown = false;
  log_.DoLog(fmt::format("Scheduled event {} completed - {} songs recorded", ended, state_.RecordedCount));
}

void SchedulePass::BeginEvent(std::int16_t due) {
  const schedule::ScheduleEntry& entry = Entry(due);
  log_.DoLog(fmt::format("Scheduled event {} beginning on channel {} until {}", due, entry.Channel,
                         base::FormatDate(schedule_.RemainingUntil, "mmm d, h:nn:ss am/pm")));
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
  commands_.cmdRecord();
  state_.SettleTicks = kSettleTicks;
  state_.WaitingForNextSong = true;
  TakeSongAsOld();
}

void SchedulePass::FollowEntry(std::int16_t due) {
  const schedule::ScheduleEntry& entry = Entry(due);
  const bool moved = channels_.ChannelNumber() != entry.Channel;
  if (moved) {
    state_.SettleTicks = kSettleTicks;
    state_.WaitingForNextSong = true;
  }
  if (schedule_.SchedEndTime != entry.EndDate) {
    log_.DoLog("Schedule changed, now recording until " +
               base::FormatDate(schedule_.RemainingUntil, "mmm d, h:nn am/pm"));
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
