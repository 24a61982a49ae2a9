#include "shelf/Shelf.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/PathText.h"

namespace kestrune::shelf {
namespace {

constexpr std::string_view kMark = ".kestrune-shelf";
constexpr std::string_view kMarkText =
    "Kestrune puts here for a while what just played and was not kept. What lies in this folder is removed "
    "in "
    "its turn.\n";
constexpr std::string_view kPart = ".kestrune-part";
constexpr int kMostOfAName = 9999;

}  // namespace

void Shelf::Open(const Places& places, std::vector<std::string> extensions) {
  Close();
  open_ = true;
  places_ = places;
  extensions_ = std::move(extensions);
  Read(places_.Wished);
  if (places_.BesideRecordings != places_.Wished) Read(places_.BesideRecordings);
  std::stable_sort(songs_.begin(), songs_.end(),
                   [](const ShelvedSong& a, const ShelvedSong& b) { return a.Ended > b.Ended; });
}

void Shelf::Close() {
  open_ = false;
  songs_.clear();
  bytes_ = 0;
  refused_.clear();
  made_.clear();
  besideOnly_ = false;
}

void Shelf::Read(const std::string& folder) {
  if (!files_.Exists(folder + std::string(kMark))) return;
  const std::vector<platform::FileEntry> entries = files_.List(folder);
  // The last written is the newest.
  for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
    const bool recording = entry->Name.find('.') != std::string::npos &&
                           std::find(extensions_.begin(), extensions_.end(),
                                     base::ExtensionOf(entry->Name)) != extensions_.end();
    if (!recording) continue;
    ShelvedSong song;
    song.Path = folder + entry->Name;
    song.Bytes = entry->Bytes;
    song.Ended = entry->Written;
    ReadName(entry->Name, song);
    bytes_ += song.Bytes;
    songs_.push_back(std::move(song));
  }
}

bool Shelf::MakePlace(const std::string& folder) {
  if (folder == made_) return true;
  for (std::size_t end = folder.find('/', 1); end != std::string::npos; end = folder.find('/', end + 1)) {
    if (!files_.Exists(folder.substr(0, end))) base::Ignored(files_.CreateFolder(folder.substr(0, end)));
  }
  const std::string mark = folder + std::string(kMark);
  if (!files_.Exists(mark)) {
    if (!files_.List(folder).empty()) {
      refused_ = folder;
      return false;
    }
    if (!files_.Replace(mark, kMarkText)) return false;
  }
  made_ = folder;
  return true;
}

bool Shelf::Put(const std::string& capture, std::string_view name, std::string_view extension,
                ShelvedSong song, const Bounds& bounds) {
  const std::optional<std::int64_t> bytes = files_.Bytes(capture);
  if (!open_ || !bytes) return false;
  Trim(bounds);
  if (songs_.size() > bounds.Songs || bytes_ > bounds.Bytes || !KeepFree(bounds.FreeBytes)) return false;
  const auto goes = WhatMustGo(*bytes, bounds);
  if (!goes) return false;
  std::vector<std::string> folders{places_.BesideRecordings};
  if (!besideOnly_ && places_.Wished != places_.BesideRecordings)
    folders.insert(folders.begin(), places_.Wished);
  for (const std::string& folder : folders) {
    if (!MakePlace(folder)) continue;
    song.Path = MoveTo(capture, folder + std::string(name), extension);
    if (song.Path.empty()) continue;
    song.Bytes = *bytes;
    bytes_ += song.Bytes;
    songs_.insert(songs_.begin(), std::move(song));
    for (const std::string& path : *goes) Drop(path);
    return true;
  }
  return false;
}

std::string Shelf::MoveTo(const std::string& capture, const std::string& name, std::string_view extension) {
  bool again = true;
  for (int number = 1; number <= kMostOfAName; ++number) {
    std::string target =
        fmt::format("{}{}.{}", name, number == 1 ? "" : fmt::format(" ({})", number), extension);
    if (Has(target)) continue;
    const platform::RenameResult moved = files_.RenameNoReplace(capture, target);
    if (moved) return target;
    if (moved.NameTaken) continue;
    if (moved.OtherVolume) {
      besideOnly_ = true;
      return {};
    }
    // Somebody may have removed the folder.
    made_.clear();
    if (!std::exchange(again, false) || files_.Exists(base::FolderOf(target)) ||
        !MakePlace(base::FolderOf(target)))
      return {};
    --number;
  }
  return {};
}

bool Shelf::KeepFree(double enough) {
  double free = files_.FreeBytes(made_.empty() ? places_.BesideRecordings : made_);
  // Unknown: then the bounds of the shelf itself have to do.
  if (free < 0) return true;
  for (std::size_t i = songs_.size(); i-- > 0 && free < enough;) {
    const std::string path = songs_[i].Path;
    const auto bytes = static_cast<double>(songs_[i].Bytes);
    if (!files_.InUse(path) && Drop(path)) free += bytes;
  }
  return free >= enough;
}

std::optional<std::vector<std::string>> Shelf::WhatMustGo(std::int64_t bytes, const Bounds& bounds) const {
  if (bounds.Songs == 0 || bytes > bounds.Bytes) return std::nullopt;
  std::vector<std::string> goes;
  std::size_t songs = songs_.size() + 1;
  std::int64_t all = bytes_ + bytes;
  for (std::size_t i = songs_.size(); i-- > 0 && (songs > bounds.Songs || all > bounds.Bytes);) {
    if (files_.InUse(songs_[i].Path)) continue;
    goes.push_back(songs_[i].Path);
    --songs;
    all -= songs_[i].Bytes;
  }
  if (songs > bounds.Songs || all > bounds.Bytes) return std::nullopt;
  return goes;
}

void Shelf::Trim(const Bounds& bounds) {
  for (std::size_t i = songs_.size(); i-- > 0 && (songs_.size() > bounds.Songs || bytes_ > bounds.Bytes);) {
    const std::string path = songs_[i].Path;
    if (!files_.InUse(path)) Drop(path);
  }
}

bool Shelf::Drop(const std::string& path) {
  // One that somebody else has removed is gone as well.
  if (!files_.Remove(path) && files_.Exists(path)) return false;
  Forget(path);
  gone_(path);
  return true;
}

platform::RenameResult Shelf::Give(const std::string& path, const std::string& target) {
  platform::RenameResult moved = files_.RenameNoReplace(path, target);
  if (moved.OtherVolume) moved = CopyTo(path, target);
  if (moved) Forget(path);
  return moved;
}

platform::RenameResult Shelf::CopyTo(const std::string& path, const std::string& target) {
  const std::string part = base::FolderOf(target) + std::string(kPart);
  if (base::Result copied = files_.Copy(path, part); !copied) return {.Outcome = std::move(copied)};
  platform::RenameResult moved = files_.RenameNoReplace(part, target);
  base::Ignored(files_.Remove(moved ? path : part));
  return moved;
}

void Shelf::Describe(const std::vector<platform::HistorySong>& known) {
  std::vector<std::string> kept;
  for (ShelvedSong& song : songs_) {
    const auto row = std::find_if(known.begin(), known.end(), [&song](const platform::HistorySong& one) {
      return one.File == song.Path;
    });
    if (row == known.end()) continue;
    if (platform::IsKept(row->Fate)) {
      kept.push_back(song.Path);
      continue;
    }
    song.Ended = row->Ended;
    song.LengthMs = row->LengthMs;
    song.Channel = row->Channel;
    song.Station = row->Station;
    song.Genre = row->Genre;
    song.Artist = row->Artist;
    song.Title = row->Title;
    song.Fate = row->Fate;
  }
  for (const std::string& path : kept) Forget(path);
}

void Shelf::Follow() {
  std::vector<std::string> lost;
  for (const ShelvedSong& song : songs_)
    if (!files_.Exists(song.Path)) lost.push_back(song.Path);
  for (const std::string& path : lost) {
    Forget(path);
    gone_(path);
  }
}

void Shelf::Forget(const std::string& path) {
  const auto song = std::find_if(songs_.begin(), songs_.end(),
                                 [&path](const ShelvedSong& one) { return one.Path == path; });
  if (song == songs_.end()) return;
  bytes_ -= song->Bytes;
  songs_.erase(song);
}

bool Shelf::Has(const std::string& path) const {
  return std::any_of(songs_.begin(), songs_.end(),
                     [&path](const ShelvedSong& one) { return one.Path == path; });
}

}  // namespace kestrune::shelf
