#include "presenters/SpokenChanges.h"

#include <utility>

#include <fmt/format.h>

#include "base/OneLine.h"
#include "base/Text.h"

namespace kestrune::presenters {
namespace {

std::string SongOf(const recorder::Announcement& announcement) {
  std::string artist = base::OneLine(base::Trim(announcement.Artist));
  std::string song = base::OneLine(base::Trim(announcement.Song));
  if (artist.empty()) return song;
  if (song.empty()) return artist;
  return fmt::format("{} by {}", song, artist);
}

std::string StatusOf(const recorder::State& state) {
  if (std::string warning = state.Watch.Warning(); !warning.empty()) return warning;
  const std::string_view status = recorder::StatusText(state.Recording.Phase);
  return status.empty() ? "Not recording" : std::string(status);
}

/// A sentence of its own.
void Add(std::string_view sentence, std::string& text) {
  if (sentence.empty()) return;
  if (!text.empty()) text += ' ';
  text += sentence;
  if (text.back() != '.') text += '.';
}

}  // namespace

SpokenChanges::Said SpokenChanges::Now(const recorder::State& state) {
  Said now;
  if (state.Announcement.Channel != 0) {
    now.Channel = base::Trim(
        fmt::format("Channel {} {}", state.Announcement.Channel, base::OneLine(state.Announcement.Station)));
  }
  now.Song = SongOf(state.Announcement);
  now.Worst = state.Watch.Worst();
  now.Phase = state.Recording.Phase;
  return now;
}

std::string SpokenChanges::Next(const recorder::State& state) {
  if (state.Run.FormLoading) return {};
  const std::chrono::milliseconds time = loop_.SteadyNow();
  Said now = Now(state);
  if (now != std::exchange(seen_, now)) seenSince_ = time;
  if (!said_) said_ = now;
  if (now == *said_ || time - seenSince_ < kSettle) return {};
  std::string text;
  if (now.Channel != said_->Channel) Add(now.Channel, text);
  if (now.Song != said_->Song) Add(now.Song, text);
  if (now.Worst != said_->Worst || now.Phase != said_->Phase) Add(StatusOf(state), text);
  said_ = std::move(now);
  return text;
}

}  // namespace kestrune::presenters
