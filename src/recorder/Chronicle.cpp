#include "recorder/Chronicle.h"

#include <algorithm>
#include <utility>

#include "recorder/SoundWatch.h"

namespace kestrune::recorder {
namespace {

/// An event ends with a pass, which comes every four seconds, and a wait for a reply may hold it up.
constexpr std::int64_t kEarlySeconds = 30;

int Dropped(const RecordingState& recording) {
  return recording.TooShortCount + recording.TooLongCount + recording.RestrictedCount;
}

/// As the outcome has it in whole hundredths: more than one of them if it was too loud.
std::int64_t OverloadedMs(const CaptureRecord& capture) {
  if (!capture.Outcome.Overloaded) return 0;
  return std::max(capture.LengthMs * capture.Outcome.FullScalePercent / 100, capture.LengthMs / 100 + 1);
}

}  // namespace

void Chronicle::SongEnded(const CaptureRecord& capture, platform::SongFate fate, std::string_view reason) {
  const CaptureOutcome& outcome = capture.Outcome;
  const SongNameValues& naming = capture.Naming.Values;
  const base::DateValue ended = loop_.Now().AddSeconds(-outcome.HeldBackMs / 1000);
  const std::int64_t seconds = (capture.LengthMs + outcome.MissingMs + 500) / 1000;
  // The log's lines go on from the one word to the other with a comma.
  if (reason.starts_with(", ")) reason.remove_prefix(2);
  history_.SongEnded({.Began = ended.AddSeconds(-seconds),
                      .Ended = ended,
                      .Channel = naming.Channel,
                      .Station = naming.Station,
                      .Genre = capture.Genre,
                      .Artist = capture.Artist,
                      .Title = capture.Song,
                      .LengthMs = capture.LengthMs,
                      .Fate = fate,
                      .Reason = std::string(reason),
                      .File = outcome.FinalName.empty() ? outcome.ShelfName : outcome.FinalName,
                      .Event = outcome.Event,
                      .SamplesLost = outcome.Sound.Lost(),
                      .MissingMs = outcome.MissingMs,
                      .SilentMs = std::min(silent_.TakeMs(loop_.SteadyNow()), capture.LengthMs),
                      .OverloadedMs = OverloadedMs(capture),
                      .LineLostMs = std::min(radioLost_.TakeMs(loop_.SteadyNow()), capture.LengthMs),
                      .Cut = outcome.Cut});
}

history::EventStart Chronicle::StartOf(const Event& event) const {
  const std::int64_t length = base::SecondsBetween(event.Entry.StartDate, event.Entry.EndDate);
  const base::DateValue due = event.Until.AddSeconds(-length);
  // What has passed of it, and what is still to pass: a step to or from summer time ahead counts.
  const std::int64_t planned =
      base::SecondsBetween(due, loop_.Now()) + base::TimeUntil(loop_, event.Until).count();
  return {.Entry = event.Number,
          .Due = due,
          .PlannedSeconds = planned,
          .Channel = event.Entry.Channel,
          .Station = event.Station,
          .WholeSongs = event.Entry.Integrel};
}

void Chronicle::EventBegan(const Event& event) {
  until_ = event.Until;
  history_.EventBegan(StartOf(event));
}

void Chronicle::EventChanged(const Event& event) {
  until_ = event.Until;
  history_.EventChanged(StartOf(event));
}

void Chronicle::EventEnded(const RecordingState& recording, std::int16_t next) {
  std::string_view why;
  if (base::TimeUntil(loop_, until_).count() > kEarlySeconds)
    why = next != 0 ? "another event took its place" : "its entry was changed or disabled";
  history_.EventEnded(recording.RecordedCount, Dropped(recording), why);
}

void Chronicle::EventMissed(std::int16_t number, const schedule::ScheduleEntry& entry, base::DateValue due,
                            std::string_view why) {
  history_.EventMissed({.Entry = number,
                        .Due = due,
                        .PlannedSeconds = base::SecondsBetween(entry.StartDate, entry.EndDate),
                        .Channel = entry.Channel,
                        .Station = {},
                        .WholeSongs = entry.Integrel},
                       why);
}

void Chronicle::Follow(const WatchState& watch) {
  const std::chrono::milliseconds now = loop_.SteadyNow();
  radioLost_.Set(!watch.RadioFailure.empty(), now, {});
  silent_.Set(watch.Silent, now, SoundWatch::kSilence);
  FollowIncident(platform::IncidentKind::Line, watch.RadioFailure, radioCause_);
  if (watch.SoundInputFailure.empty() && watch.Silent) {
    FollowIncident(platform::IncidentKind::Sound, "no sound comes from the radio", soundCause_,
                   SoundWatch::kSilence);
  } else {
    FollowIncident(platform::IncidentKind::Sound, watch.SoundInputFailure, soundCause_);
  }
  FollowIncident(platform::IncidentKind::Disk, watch.WriteFailure, diskCause_);
}

void Chronicle::Stopwatch::Set(bool on, std::chrono::milliseconds now, std::chrono::milliseconds already) {
  if (on == on_) return;
  if (on_) sum_ += now - since_;
  on_ = on;
  since_ = now - already;
}

std::int64_t Chronicle::Stopwatch::TakeMs(std::chrono::milliseconds now) {
  if (on_) sum_ += now - since_;
  since_ = now;
  return std::exchange(sum_, {}).count();
}

void Chronicle::FollowIncident(platform::IncidentKind kind, std::string_view cause, std::string& said,
                               std::chrono::seconds already) {
  if (cause == said) return;
  said = cause;
  if (cause.empty()) {
    history_.IncidentEnded(kind);
  } else {
    history_.IncidentBegan(kind, cause, already);
  }
}

void Chronicle::Heard(const radio::ChannelInfo& info) {
  history_.Heard(info.Channel,
                 {.Station = info.Station, .Genre = info.Genre, .Artist = info.Artist, .Title = info.Song});
}

void Chronicle::Close(const RecordingState& recording) {
  constexpr std::string_view kWhy = "the program was closed";
  history_.EventEnded(recording.RecordedCount, Dropped(recording), kWhy);
  history_.Close(kWhy);
}

}  // namespace kestrune::recorder
