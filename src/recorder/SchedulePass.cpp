#include "recorder/SchedulePass.h"

#include <optional>

#include <fmt/format.h>

#include "base/DatePattern.h"

namespace kestrune::recorder {
namespace {

// Nothing that the radio says within these ticks of a new channel counts as a change of song.
constexpr std::int16_t kSettleTicks = 4;

}  // namespace

SchedulePass::SchedulePass(const schedule::ScheduleEntries& entries, schedule::ScheduleState& schedule,
                           RecordingState& state, radio::RadioState& radio, radio::Channels& channels,
                           RecordCommands& commands, MainWindow& window, base::Journal& log,
                           const base::EventLoop& loop, base::Timer& tmrUpdate)
    : entries_(entries),
      schedule_(schedule),
      state_(state),
      radio_(radio),
      channels_(channels),
      commands_(commands),
      window_(window),
      log_(log),
      tmrUpdate_(tmrUpdate),
      search_(entries, [&loop] { return loop.Now(); }) {}

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
    if (RecordsByHand()) return commands_.cmdStop();
    if (!window_.cmdRecord.Enabled) return;
    BeginEvent(due);
    tmrUpdate_.SetEnabled(false);
  }
  if (due == schedule_.ActiveSchedule) FollowEntry(due);
}

void SchedulePass::EndEvent() {
  commands_.cmdStop();
  const std::int16_t ended = schedule_.ActiveSchedule;
  schedule_.ActiveSchedule = 0;
  window_.lblRemaining.Visible = window_.lblcRemaining.Visible = false;
  window_.pctTimer = {.Visible = false, .Tag = "0"};
  log_.DoLog(fmt::format("Scheduled event {} completed - {} songs recorded", ended, state_.RecordedCount));
}

bool SchedulePass::RecordsByHand() const {
  return window_.cmdStop.Enabled && !window_.cmdRecord.Enabled;
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
  window_.lblRemaining.Caption.clear();
  window_.lblRemaining.Visible = window_.lblcRemaining.Visible = true;
  window_.pctTimer = {.Visible = true, .Tag = "1"};
  // Before the recording starts, which already asks the entry for its modes and its bit rate.
  schedule_.ActiveSchedule = due;
  commands_.cmdRecord();
  // Only the schedule ends an event.
  window_.cmdStop.Enabled = false;
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
  window_.cmdStop.Enabled = false;
  // The mark keeps its tag, so that the next blink brings it back.
  window_.pctTimer.Visible = false;
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
