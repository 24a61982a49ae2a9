#include "recorder/SoundWatch.h"

#include <string>
#include <utility>

#include <fmt/format.h>

#include "base/SameDay.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::chrono::seconds kLookInterval{1};

std::string Elapsed(std::chrono::milliseconds time) {
  return FormatSeconds(time.count() / 1000);
}

}  // namespace

SoundWatch::SoundWatch(State& state, const AudioObjects& audio, const SoundMeter& meter,
                       base::EventLoop& loop, base::Journal& journal)
    : state_(state),
      audio_(audio),
      meter_(meter),
      loop_(loop),
      journal_(journal),
      tmrLook_(loop.MakeTimer(kLookInterval, [this] { Look(); })) {}

void SoundWatch::Look() {
  if (!state_.Settings.Watch || audio_.AudioRecord == nullptr) return Forget();
  LookForInput();
  LookForSilence();
  LookForOverload();
}

void SoundWatch::LookForInput() {
  std::string& failure = state_.Watch.SoundInputFailure;
  const Milliseconds now = loop_.SteadyNow();
  const platform::AudioRecorder& recorder = *audio_.AudioRecord;
  // Without a file nothing is taken from the input.
  if (std::exchange(frames_, recorder.FramesCaptured()) != frames_ || !Listening()) {
    if (!failure.empty()) journal_.DoLog("Sound input found again after " + Elapsed(now - lastFrames_));
    failure.clear();
    lastFrames_ = now;
    looksWithoutFrames_ = 0;
  } else if (++looksWithoutFrames_ == kLooksWithoutSound) {
    failure = recorder.OpenError();
    if (failure.empty()) failure = "nothing comes from it";
    journal_.DoLog("Sound input lost: " + failure);
  }
}

bool SoundWatch::Listening() const {
  const RecordingState& recording = state_.Recording;
  return !recording.CaptureSlots.at(static_cast<std::size_t>(recording.CaptureSlot)).Outcome.File.empty();
}

bool SoundWatch::SoundWanted() const {
  return !state_.Recording.Muted && (state_.Recording.IsRecording() || state_.Schedule.ActiveSchedule != 0);
}

void SoundWatch::LookForSilence() {
  const Milliseconds now = loop_.SteadyNow();
  const bool loud = std::exchange(loudBlocks_, meter_.LoudBlocks()) != meter_.LoudBlocks();
  bool& silent = state_.Watch.Silent;
  // A lost input is said already, and its end is no end of a silence.
  if (!SoundWanted() || !Listening() || !state_.Watch.SoundInputFailure.empty()) {
    lastLoud_ = now;
    silent = false;
    return;
  }
  if (loud) {
    if (silent) journal_.DoLog("Sound is back after " + Elapsed(now - lastLoud_));
    lastLoud_ = now;
    silent = false;
  } else if (!silent && now - lastLoud_ >= kSilence) {
    silent = true;
    journal_.DoLog(
        fmt::format("No sound from the radio for {} seconds; check the cable, the input device and its level",
                    kSilence.count()));
  }
}

void SoundWatch::LookForOverload() {
  const base::DateValue today = loop_.Now();
  if (overloadSaid_ && base::SameDay(*overloadSaid_, today)) return;
  for (const CaptureRecord& song : state_.Recording.CaptureSlots) {
    const CaptureOutcome& outcome = song.Outcome;
    if (!outcome.Overloaded || outcome.FinalName.empty()) continue;
    overloadSaid_ = today;
    journal_.DoLog(
        fmt::format("The sound of \"{} - {}\" is too loud: {} % of it is at full scale; lower the "
                    "recording level",
                    song.Artist, song.Song, outcome.FullScalePercent));
    return;
  }
}

void SoundWatch::Forget() {
  state_.Watch.SoundInputFailure.clear();
  state_.Watch.Silent = false;
  looksWithoutFrames_ = 0;
  lastLoud_ = lastFrames_ = loop_.SteadyNow();
}

}  // namespace kestrune::recorder
