#include "presenters/RecentSongs.h"

#include <algorithm>
#include <functional>

#include "base/Numbers.h"
#include "base/OneLine.h"
#include "base/SameDay.h"
#include "base/Text.h"
#include "presenters/MomentText.h"

namespace kestrune::presenters {

RecentSongs::RecentSongs(const recorder::RecordingState& recording, history::History& history,
                         base::EventLoop& loop)
    : recording_(recording), history_(history), loop_(loop) {}

void RecentSongs::Follow() {
  if (!std::exchange(asked_, true)) {
    const base::DateValue now = loop_.Now();
    history_.AskSongs(now.AddDays(-kDays), now,
                      [this, alive = std::weak_ptr(alive_)](const base::Result& asked, const auto& songs) {
                        if (!alive.expired() && asked.Ok()) TakeRecord(songs);
                      });
  }
  const auto& songs = recording_.EndedSongs.Songs();
  bool changed = !base::SameDay(shownOn_, loop_.Now());
  if (changed) ForgetOldLengths();
  // From the oldest on, so that the newest comes to the front.
  for (auto song = songs.rbegin(); song != songs.rend(); ++song) {
    if (song->Number <= last_) continue;
    last_ = song->Number;
    NoteLength(song->Artist, song->Song, {.Milliseconds = song->LengthMs, .Ended = loop_.Now()});
    if (!platform::IsKept(song->Fate)) continue;
    kept_.insert(kept_.begin(), {.Ended = loop_.Now(),
                                 .Artist = song->Artist,
                                 .Title = song->Song,
                                 .LengthMs = song->LengthMs,
                                 .File = song->Path});
    changed = true;
  }
  if (changed) Rebuild();
}

void RecentSongs::TakeRecord(const std::vector<platform::HistorySong>& songs) {
  std::vector<KeptSong> before;
  for (const platform::HistorySong& song : songs) {
    NoteLength(song.Artist, song.Title, {.Milliseconds = song.LengthMs, .Ended = song.Ended});
    if (!platform::IsKept(song.Fate) || song.File.empty() || HasFile(song.File)) continue;
    before.push_back({.Ended = song.Ended,
                      .Artist = song.Artist,
                      .Title = song.Title,
                      .LengthMs = song.LengthMs,
                      .File = song.File});
  }
  std::ranges::stable_sort(before, std::ranges::greater(), &KeptSong::Ended);
  kept_.insert(kept_.end(), before.begin(), before.end());
  Rebuild();
}

bool RecentSongs::HasFile(const std::string& file) const {
  return std::ranges::find(kept_, file, &KeptSong::File) != kept_.end();
}

void RecentSongs::NoteLength(std::string_view artist, std::string_view title, const Length& length) {
  if (artist.empty() && title.empty()) return;
  Length& noted = lengths_[{base::ToLower(artist), base::ToLower(title)}];
  noted.Milliseconds = std::max(noted.Milliseconds, length.Milliseconds);
  noted.Ended = std::max(noted.Ended, length.Ended);
}

void RecentSongs::ForgetOldLengths() {
  const base::DateValue oldest = loop_.Now().AddDays(-kDays);
  std::erase_if(lengths_, [oldest](const auto& song) { return song.second.Ended < oldest; });
}

std::optional<std::int64_t> RecentSongs::LengthOf(std::string_view artist, std::string_view title) const {
  const auto found = lengths_.find({base::ToLower(artist), base::ToLower(title)});
  if (found == lengths_.end()) return std::nullopt;
  return found->second.Milliseconds;
}

void RecentSongs::Rebuild() {
  shownOn_ = loop_.Now();
  if (kept_.size() > kMostKept) kept_.resize(kMostKept);
  rows_.clear();
  for (const KeptSong& song : kept_) {
    rows_.push_back({.Time = MomentText(song.Ended, shownOn_),
                     .Artist = base::OneLine(song.Artist),
                     .Title = base::OneLine(song.Title),
                     .Length = song.LengthMs <= 0 ? std::string() : base::SixtiesText(song.LengthMs / 1000),
                     .File = song.File});
  }
  ++changes_;
}

}  // namespace kestrune::presenters
