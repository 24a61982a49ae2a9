#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "base/Result.h"
#include "history/History.h"
#include "platform/Files.h"
#include "recorder/Chronicle.h"
#include "recorder/SongFiles.h"
#include "recorder/State.h"
#include "shelf/Shelf.h"

namespace kestrune::recorder {

/// The shelf of a unit: puts there what was captured and not kept, and keeps a song of it after all. It follows the settings
/// ShelfFolder, ShelfSongs and ShelfMegabytes; while ShelfSongs is 0 it touches no file.
class Shelving {
 public:
  /// What it works on. All must outlive the object.
  struct Parts {
    platform::Files& Files;
    recorder::SongFiles& SongFiles;
    recorder::Chronicle& Chronicle;
    history::History& History;
  };

  /// A part of a song that is shorter is no use to anybody.
  static constexpr std::int64_t kShortestPartMs = 10'000;

  Shelving(State& state, const Parts& parts, const base::EventLoop& loop, base::Journal& journal);

  /// Finds what earlier runs have left, for the unit of this name, empty for a single one; what the record knows of it
  /// follows from the event loop.
  void Start(const std::string& multiUnit);

  /// A stopped capture is not kept, for this reason: puts it on the shelf, if it has sound and there is room, and notes
  /// the place in its outcome. Else it is where it was.
  void Take(CaptureRecord& capture, platform::SongFate fate, bool incomplete);
  /// A capture was kept or dropped: what the settings do not allow any more goes, and what the disk has no room for.
  void KeepBounds();

  /// What lies there now, newest first.
  [[nodiscard]] const std::vector<shelf::ShelvedSong>& Songs();

  /// Moves the song of that number, of which 1 is the newest, to the collection: under the name that a recording gets
  /// by the settings as they are now, and by the rules for duplicates. The cause of a failure is one line.
  base::Result Keep(std::size_t number);
  /// The same for the song that lies at this path.
  base::Result KeepFile(const std::string& path);

 private:
  void FollowSettings();
  [[nodiscard]] shelf::Places PlacesWished() const;
  [[nodiscard]] shelf::Bounds BoundsNow() const;
  void AskRecord(const std::string& folder);
  void SayRefusedFolder();
  base::Result Keep(const shelf::ShelvedSong& song);
  /// Where the song belongs, without suffix, point and extension; the folder is made.
  [[nodiscard]] std::string PlaceOf(const shelf::ShelvedSong& song);

  RecordingState& recording_;
  const config::Settings& settings_;
  SongFiles& songFiles_;
  Chronicle& chronicle_;
  history::History& history_;
  const base::EventLoop& loop_;
  base::Journal& journal_;
  shelf::Shelf shelf_;
  std::string multiUnit_;
  std::string refusedSaid_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// The line of the log on a song that a user has kept.
[[nodiscard]] std::string KeptLine(std::int16_t channel, std::string_view name, std::int64_t lengthMs,
                                   std::string_view extension);

}  // namespace kestrune::recorder
