#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Result.h"
#include "platform/Files.h"
#include "platform/HistoryRows.h"
#include "shelf/ShelvedSong.h"

namespace kestrune::shelf {

/// How much may lie on the shelf.
struct Bounds {
  std::size_t Songs = 0;
  std::int64_t Bytes = 0;
  double FreeBytes = 0;  ///< that its disk keeps free: the songs give way until it has them

  bool operator==(const Bounds&) const = default;
};

/// Where the shelf may lie: the first folder that takes a song. A song is only ever renamed onto the shelf, so one
/// that comes from another volume goes to the second folder. Both end in "/" and may be the same.
struct Places {
  std::string Wished;
  std::string BesideRecordings;

  bool operator==(const Places&) const = default;
};

/// The songs that just played and were not kept, in a folder of their own. For the main thread.
///
/// 1. It is never more than one song above its count and its bytes. What comes makes the oldest go; a song that alone
///    is larger than the shelf does not come in.
/// 2. While the disk has less free room than it is to have, the oldest songs go, and none comes in.
/// 3. A song whose file anybody has open stays; the next oldest goes instead.
/// 4. A folder is the shelf's if it was empty when the first song came, which a hidden file in it tells later on. In any
///    other folder nothing is put and nothing removed. What lies in the shelf's folder and has the name of a recording is on the shelf, so that
///    after a crash the folder alone tells what is there.
/// 5. No call ever replaces a file.
class Shelf {
 public:
  /// Told of each song that has gone, but not of one that was given away.
  using Gone = std::function<void(const std::string& path)>;

  /// `files` must outlive the object.
  Shelf(platform::Files& files, Gone gone) : files_(files), gone_(std::move(gone)) {}

  /// Finds what lies in the two places, in files with one of these extensions. Changes nothing.
  void Open(const Places& places, std::vector<std::string> extensions);
  /// Forgets all. Changes nothing.
  void Close();
  [[nodiscard]] bool IsOpen() const { return open_; }
  [[nodiscard]] const Places& WhereItIs() const { return places_; }

  /// Newest first.
  [[nodiscard]] const std::vector<ShelvedSong>& Songs() const { return songs_; }
  [[nodiscard]] std::int64_t Bytes() const { return bytes_; }
  /// A folder that was wished for and cannot be the shelf's, because other files lie in it; empty if there is none.
  [[nodiscard]] const std::string& RefusedFolder() const { return refused_; }

  /// Moves a capture that lies at `capture` onto the shelf under `name`, which is without point and extension, or under
  /// that name and a number. True if it lies there; song.Path and song.Bytes follow from it. If not, the capture is where it was.
  bool Put(const std::string& capture, std::string_view name, std::string_view extension, ShelvedSong song,
           const Bounds& bounds);
  /// Lets the oldest songs go until the bounds are kept.
  void Trim(const Bounds& bounds);
  /// Lets the oldest songs go until the disk has so much free room. False if it has not even then.
  bool KeepFree(double enough);

  /// Moves a song to another name; from another volume its bytes are copied. Afterwards it is not on the shelf any
  /// more. If it fails the song stays.
  platform::RenameResult Give(const std::string& path, const std::string& target);

  /// What the record knows of the songs. A song that was kept meanwhile is not on the shelf.
  void Describe(const std::vector<platform::HistorySong>& known);
  /// Forgets the songs whose files somebody else has taken away.
  void Follow();

 private:
  void Read(const std::string& folder);
  [[nodiscard]] bool MakePlace(const std::string& folder);
  /// The songs that have to go before there is room for one more; nothing if there is none.
  [[nodiscard]] std::optional<std::vector<std::string>> WhatMustGo(std::int64_t bytes,
                                                                   const Bounds& bounds) const;
  /// Renames to the first name of that kind that is free; empty if that fails.
  [[nodiscard]] std::string MoveTo(const std::string& capture, const std::string& name,
                                   std::string_view extension);
  [[nodiscard]] platform::RenameResult CopyTo(const std::string& path, const std::string& target);
  /// False if the file is still there.
  bool Drop(const std::string& path);
  void Forget(const std::string& path);
  [[nodiscard]] bool Has(const std::string& path) const;

  platform::Files& files_;
  Gone gone_;
  bool open_ = false;
  Places places_;
  std::vector<std::string> extensions_;
  std::vector<ShelvedSong> songs_;
  std::int64_t bytes_ = 0;
  std::string refused_;
  std::string made_;         // the folder that was last found to be the shelf's
  bool besideOnly_ = false;  // what is captured comes from another volume than the wished folder
};

}  // namespace kestrune::shelf
