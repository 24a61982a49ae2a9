#include "presenters/Shelf.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Numbers.h"
#include "base/OneLine.h"
#include "base/Text.h"
#include "history/Advice.h"
#include "presenters/MomentText.h"
#include "recorder/Shelving.h"

namespace kestrune::presenters {
namespace {

constexpr std::chrono::milliseconds kLookInterval{500};

const recorder::CaptureRecord& InHand(const recorder::State& state) {
  return state.Recording.CaptureSlots.at(static_cast<std::size_t>(state.Recording.CaptureSlot));
}

std::string LengthText(std::int64_t milliseconds) {
  return milliseconds <= 0 ? std::string() : base::SixtiesText(milliseconds / 1000);
}

}  // namespace

bool MayKeepCurrent(const recorder::State& state) {
  const recorder::CaptureRecord& capture = InHand(state);
  return !capture.KeepAtEnd && !capture.FileName.empty() && capture.Outcome.Failure().empty() &&
         !state.Run.ShuttingDown;
}

Shelf::Shelf(recorder::Kestrune& unit, platform::Shell& shell, base::EventLoop& loop)
    : unit_(unit), shell_(shell), tmrLook_(loop.MakeTimer(kLookInterval, [this] { Look(); })) {}

Shelf::~Shelf() = default;

void Shelf::Load() {
  opening_ = std::make_shared<int>(0);
  words_.clear();
  message_.clear();
  Look();
  tmrLook_->SetEnabled(true);
}

void Shelf::Unload() {
  opening_.reset();
  tmrLook_->SetEnabled(false);
}

void Shelf::Search(std::string_view text) {
  words_ = base::Split(text, ' ');
  std::erase(words_, std::string());
  Look();
}

bool Shelf::Matches(const ShelfRow& row) const {
  return std::all_of(words_.begin(), words_.end(), [&row](const std::string& word) {
    return base::ContainsNoCase(row.Station, word) || base::ContainsNoCase(row.Artist, word) ||
           base::ContainsNoCase(row.Title, word);
  });
}

ShelfRow Shelf::PresentRow() const {
  const recorder::CaptureRecord& capture = InHand(unit_.State());
  return {.Present = true,
          .Wanted = capture.KeepAtEnd,
          .Time = "now",
          .Station = base::OneLine(capture.Naming.Values.Station),
          .Artist = base::OneLine(capture.Artist),
          .Title = base::OneLine(capture.Song),
          .Length = LengthText(capture.LengthMs),
          .Fate = capture.KeepAtEnd ? "will be kept" : "",
          .File = {}};
}

void Shelf::Look() {
  std::vector<ShelfRow> rows;
  if (!InHand(unit_.State()).FileName.empty()) rows.push_back(PresentRow());
  const base::DateValue now = unit_.Now();
  for (const shelf::ShelvedSong& song : unit_.Parts().Shelving.Songs()) {
    ShelfRow row{.Present = false,
                 .Wanted = false,
                 .Time = MomentText(song.Ended, now),
                 .Station = base::OneLine(song.Station),
                 .Artist = base::OneLine(song.Artist),
                 .Title = base::OneLine(song.Title),
                 .Length = LengthText(song.LengthMs),
                 .Fate = std::string(history::FateText(song.Fate)),
                 .File = song.Path};
    if (song.Incomplete) row.Fate += ", incomplete";
    if (Matches(row)) rows.push_back(std::move(row));
  }
  const bool off = unit_.Parts().Settings.Current().ShelfSongs == 0;
  if (rows == rows_ && off == off_) return;
  rows_ = std::move(rows);
  off_ = off;
  ++changes_;
}

std::string_view Shelf::Message() const {
  if (!message_.empty() || !off_) return message_;
  return "The shelf is off: the configuration puts no songs there.";
}

void Shelf::Say(std::string message) {
  message_ = std::move(message);
  ++changes_;
  Look();
}

const ShelfRow* Shelf::At(int row) const {
  const bool there = row >= 0 && static_cast<std::size_t>(row) < rows_.size();
  return there ? &rows_[static_cast<std::size_t>(row)] : nullptr;
}

bool Shelf::MayKeep(int row) const {
  const ShelfRow* const song = At(row);
  return song != nullptr && (song->Present ? MayKeepCurrent(unit_.State()) : !song->File.empty());
}

bool Shelf::HasFile(int row) const {
  return At(row) != nullptr && !At(row)->File.empty();
}

void Shelf::Play(int row) {
  if (!HasFile(row)) return;
  if (!shell_.Open(At(row)->File)) Say("There is no player for this file.");
}

void Shelf::Keep(int row) {
  if (!MayKeep(row)) return;
  const ShelfRow song = *At(row);
  const auto answered = [this, opening = std::weak_ptr(opening_), song](const base::Result& kept) {
    if (opening.expired()) return;
    const std::string name = fmt::format("{} - {}", song.Artist, song.Title);
    if (!kept.Ok()) return Say(fmt::format("{} was not kept: {}.", name, kept.Cause()));
    Say(song.Present ? fmt::format("{} will be kept at its end.", name) : fmt::format("{} was kept.", name));
  };
  if (song.Present) {
    unit_.Wishes().KeepCurrent(answered);
  } else {
    unit_.Wishes().KeepFile(song.File, answered);
  }
}

void Shelf::ShowInFolder(int row) {
  if (!HasFile(row)) return;
  const std::string& file = At(row)->File;
  base::Ignored(shell_.Open(file.substr(0, file.rfind('/') + 1)));
}

}  // namespace kestrune::presenters
