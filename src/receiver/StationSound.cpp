#include "receiver/StationSound.h"

#include <algorithm>

#include "receiver/Timeline.h"

namespace kestrune::receiver {
namespace {

int OrdinalOf(const LineUp& lineUp, const Station& station, std::size_t index) {
  std::size_t ordinal = index;
  for (const Station& other : lineUp.Stations) {
    if (&other == &station) break;
    ordinal += other.Songs.size();
  }
  return static_cast<int>(ordinal);
}

}  // namespace

StationSound::StationSound(const LineUp& lineUp, SignalKind kind, int sampleRate)
    : lineUp_(lineUp), kind_(kind), sampleRate_(sampleRate), signal_(MakeSongSignal(kind, sampleRate)) {}

std::int64_t StationSound::FramesUntil(std::chrono::milliseconds time) const {
  const std::int64_t scaled = time.count() * sampleRate_;
  return scaled >= 0 ? (scaled + 999) / 1000 : -(-scaled / 1000);
}

SongPlace StationSound::PlaceAt(int channel, std::int64_t frame) const {
  const Station* const station = lineUp_.Find(channel);
  if (station == nullptr) return {};
  const Playing playing = PlayingAt(*station, std::chrono::milliseconds(frame * 1000 / sampleRate_));
  if (playing.What == nullptr) return {};
  const std::size_t songs = station->Songs.size();
  const Song& before = station->Songs[(playing.Index + songs - 1) % songs];
  return {.What = playing.What,
          .Ordinal = OrdinalOf(lineUp_, *station, playing.Index),
          .StartFrame = FramesUntil(playing.Start),
          .EndFrame = FramesUntil(playing.End),
          .Before = &before,
          .BeforeFrame = FramesUntil(playing.Start - before.Length)};
}

void StationSound::Render(int channel, std::int64_t firstFrame, std::span<std::int16_t> interleaved) {
  while (!interleaved.empty()) {
    const SongPlace place = PlaceAt(channel, firstFrame);
    std::size_t samples = interleaved.size();
    if (place.What != nullptr) {
      samples = std::min(samples, static_cast<std::size_t>(place.EndFrame - firstFrame) * 2);
    }
    const std::span<std::int16_t> run = interleaved.first(samples);
    const bool countsOn = kind_ == SignalKind::Counter && lineUp_.Find(channel) != nullptr;
    if (place.What != nullptr || countsOn) {
      signal_->Render(place, firstFrame, run);
    } else {
      std::fill(run.begin(), run.end(), std::int16_t{0});
    }
    interleaved = interleaved.subspan(samples);
    firstFrame += static_cast<std::int64_t>(samples / 2);
  }
}

}  // namespace kestrune::receiver
