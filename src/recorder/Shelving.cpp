#include "recorder/Shelving.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "base/PathText.h"
#include "base/Text.h"
#include "config/formats/FormatTable.h"
#include "recorder/DiskWatch.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

using base::Result;
using platform::SongFate;

constexpr std::int64_t kBytesPerMegabyte = 1'000'000;

bool GoesOnShelf(SongFate fate) {
  switch (fate) {
    case SongFate::TooShort:
    case SongFate::TooLong:
    case SongFate::NotGrabbed:
    case SongFate::Killed:
    case SongFate::Duplicate:
    case SongFate::NotWhole:
    case SongFate::NotWanted:
      return true;
    case SongFate::Kept:
    case SongFate::KeptIncomplete:
    case SongFate::KeptUnnamed:
    case SongFate::KeptLater:
    case SongFate::NoSound:
    case SongFate::Failed:
      return false;
  }
  return false;
}

std::vector<std::string> Extensions() {
  std::vector<std::string> extensions;
  for (const std::string_view code : config::FileFormats()) extensions.push_back(base::ToLower(code));
  return extensions;
}

/// The format's code, as users know it.
std::string CodeOf(std::string_view extension) {
  for (const std::string_view code : config::FileFormats())
    if (base::ToLower(code) == extension) return std::string(code);
  return std::string(extension);
}

std::string SuffixOf(bool incomplete) {
  return incomplete ? std::string(shelf::kIncompleteSuffix) : std::string();
}

}  // namespace

std::string KeptLine(std::int16_t channel, std::string_view name, std::int64_t lengthMs,
                     std::string_view extension) {
  return fmt::format("Kept: Channel {}  \"{}\"  Song length: {} {}", channel, name,
                     FormatSeconds(lengthMs / 1000), CodeOf(extension));
}

Shelving::Shelving(State& state, const Parts& parts, const base::EventLoop& loop, base::Journal& journal)
    : recording_(state.Recording),
      settings_(state.Settings),
      songFiles_(parts.SongFiles),
      chronicle_(parts.Chronicle),
      history_(parts.History),
      loop_(loop),
      journal_(journal),
      shelf_(parts.Files, [this](const std::string& path) { chronicle_.SongMoved(path, ""); }) {}

void Shelving::Start(const std::string& multiUnit) {
  multiUnit_ = multiUnit;
  FollowSettings();
}

shelf::Places Shelving::PlacesWished() const {
  const std::string beside =
      settings_.FileDir + "Kestrune/Shelf" + (multiUnit_.empty() ? "" : "-" + multiUnit_) + "/";
  // What is recorded into the folder would be taken for the shelf's at the next start.
  const bool own = !settings_.ShelfFolder.empty() && settings_.ShelfFolder != settings_.FileDir;
  return {.Wished = own ? settings_.ShelfFolder : beside, .BesideRecordings = beside};
}

shelf::Bounds Shelving::BoundsNow() const {
  return {.Songs = static_cast<std::size_t>(std::max<std::int16_t>(settings_.ShelfSongs, 0)),
          .Bytes = settings_.ShelfMegabytes * kBytesPerMegabyte,
          .FreeBytes = DiskWatch::kEnoughBytes};
}

void Shelving::FollowSettings() {
  if (settings_.ShelfSongs <= 0) return shelf_.Close();
  const shelf::Places places = PlacesWished();
  if (shelf_.IsOpen() && shelf_.WhereItIs() == places) return;
  shelf_.Open(places, Extensions());
  refusedSaid_.clear();
  if (shelf_.Songs().empty()) return;
  AskRecord(places.Wished);
  if (places.BesideRecordings != places.Wished) AskRecord(places.BesideRecordings);
}

void Shelving::AskRecord(const std::string& folder) {
  history_.AskFolder(folder, [this, alive = std::weak_ptr(alive_)](
                                 const Result& asked, const std::vector<platform::HistorySong>& songs) {
    if (!alive.expired() && asked.Ok()) shelf_.Describe(songs);
  });
}

void Shelving::Take(CaptureRecord& capture, SongFate fate, bool incomplete) {
  FollowSettings();
  const CaptureOutcome& outcome = capture.Outcome;
  if (!shelf_.IsOpen() || !GoesOnShelf(fate) || outcome.File.empty() || !outcome.Failure().empty()) return;
  if (capture.LengthMs <= 0 || (incomplete && capture.LengthMs < kShortestPartMs)) return;
  const SongNameValues& naming = capture.Naming.Values;
  shelf::ShelvedSong song;
  song.Ended = loop_.Now().AddSeconds(-outcome.HeldBackMs / 1000);
  song.LengthMs = capture.LengthMs;
  song.Channel = naming.Channel;
  song.Station = naming.Station;
  song.Genre = capture.Genre;
  song.Artist = capture.Artist;
  song.Title = capture.Song;
  song.Fate = fate;
  song.Incomplete = incomplete;
  const std::string name = base::NameOf(capture.FileName) + SuffixOf(incomplete);
  const bool put = shelf_.Put(outcome.File, name, capture.Extension, std::move(song), BoundsNow());
  SayRefusedFolder();
  if (!put) return;
  capture.Outcome.ShelfName = shelf_.Songs().front().Path;
  capture.Outcome.File.clear();
}

void Shelving::KeepBounds() {
  FollowSettings();
  if (shelf_.Songs().empty()) return;
  shelf_.Trim(BoundsNow());
  shelf_.KeepFree(DiskWatch::kEnoughBytes);
}

void Shelving::SayRefusedFolder() {
  if (shelf_.RefusedFolder() == refusedSaid_) return;
  refusedSaid_ = shelf_.RefusedFolder();
  journal_.DoLog(
      fmt::format("The folder \"{}\" has other files in it and cannot be the shelf", refusedSaid_));
}

const std::vector<shelf::ShelvedSong>& Shelving::Songs() {
  FollowSettings();
  if (shelf_.IsOpen()) shelf_.Trim(BoundsNow());
  shelf_.Follow();
  return shelf_.Songs();
}

Result Shelving::Keep(std::size_t number) {
  const std::vector<shelf::ShelvedSong>& songs = Songs();
  if (!shelf_.IsOpen()) return Result::Failed("there is no shelf: the setting ShelfSongs is 0");
  if (songs.empty()) return Result::Failed("nothing is on the shelf");
  if (number < 1 || number > songs.size()) {
    return Result::Failed(
        fmt::format("there {} on the shelf",
                    songs.size() == 1 ? "is one song" : fmt::format("are {} songs", songs.size())));
  }
  return Keep(shelf::ShelvedSong(songs[number - 1]));
}

Result Shelving::KeepFile(const std::string& path) {
  const std::vector<shelf::ShelvedSong>& songs = Songs();
  const auto song = std::find_if(songs.begin(), songs.end(),
                                 [&path](const shelf::ShelvedSong& one) { return one.Path == path; });
  if (song == songs.end()) return Result::Failed("the song is not on the shelf any more");
  return Keep(shelf::ShelvedSong(*song));
}

std::string Shelving::PlaceOf(const shelf::ShelvedSong& song) {
  const std::string extension = base::ExtensionOf(song.Path);
  const bool known = song.Channel != 0;
  // Of a song that the record does not know there is only the name.
  const SongName name =
      BuildSongName(known ? settings_.FilenameFormat : "%a - %s", settings_.FileDir, extension,
                    {.Artist = song.Artist,
                     .Song = song.Title,
                     .Channel = song.Channel,
                     .Station = song.Station,
                     .Genre = song.Genre,
                     .SessionStart = song.Ended.AddSeconds(-song.LengthMs / 1000),
                     .Recorded = recording_.RecordedCount});
  songFiles_.MakeFolder(name.Folder);
  return name.FileName;
}

Result Shelving::Keep(const shelf::ShelvedSong& song) {
  const std::string suffix = SuffixOf(song.Incomplete);
  const std::string extension = base::ExtensionOf(song.Path);
  std::string name = PlaceOf(song);
  for (;;) {
    const std::string target = fmt::format("{}{}.{}", name, suffix, extension);
    platform::RenameResult moved;
    const bool taken = songFiles_.Exists(target);
    if (!taken) moved = shelf_.Give(song.Path, target);
    if (!taken && moved) {
      songFiles_.Sync(target);
      chronicle_.SongMoved(song.Path, target, SongFate::KeptLater);
      recording_.EndedSongs.Add({.Number = 0,
                                 .Channel = song.Channel,
                                 .Station = song.Station,
                                 .Artist = song.Artist,
                                 .Song = song.Title,
                                 .LengthMs = song.LengthMs,
                                 .Fate = SongFate::KeptLater,
                                 .Path = target});
      journal_.DoLog(
          KeptLine(song.Channel, song.Artist + " - " + song.Title + suffix, song.LengthMs, extension));
      return Result::Done();
    }
    if (!taken && !moved.NameTaken)
      return Result::Failed(fmt::format("cannot move it to \"{}\": {}", target, moved.Outcome.Cause()));
    if (!settings_.SaveDuplicates) return Result::Failed("duplicate song in output directory");
    AdvanceName(name);
  }
}

}  // namespace kestrune::recorder
