#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/DateValue.h"
#include "base/Journal.h"
#include "platform/FileSync.h"
#include "platform/Files.h"
#include "recorder/RecordingState.h"

namespace kestrune::recorder {

/// How the move of a capture to its final name ended.
struct MovedSong {
  enum class To {
    FinalName,  ///< the song has its name
    NameTaken,  ///< the name is in use, and nothing was moved
    OwnName,    ///< the name could not be given; the song is kept under another one
    Nowhere,    ///< there is no such capture
  };
  To Where = To::FinalName;
  std::string Path;   ///< where the song lies now
  std::string Cause;  ///< why it does not have its final name; empty if it has
};

/// The captures on the disk: their folders, their way to a final name, their end. No call ever replaces a file.
class SongFiles {
 public:
  SongFiles(platform::Files& files, platform::FileSync& sync, base::Journal& journal);
  ~SongFiles();
  SongFiles(const SongFiles&) = delete;
  SongFiles& operator=(const SongFiles&) = delete;

  /// Makes the folder and what is missing above it. If it is not there afterwards, the log has the reason.
  void MakeFolder(const std::string& folder);

  [[nodiscard]] bool Exists(std::string_view path) const { return files_.Exists(path); }

  /// Renames the capture to `target` and has it brought to the disk. If the rename fails for another reason than a
  /// name in use, the song gets a name of its own in the same folder, from the time `now`.
  [[nodiscard]] MovedSong Move(CaptureRecord& capture, const std::string& target, base::DateValue now);

  /// Has a file that got its name from somebody else brought to the disk.
  void Sync(const std::string& path) { sync_.Sync(path); }

  /// Removes the capture, if there is one.
  void Discard(CaptureRecord& capture);

  /// Removes the files of that pattern from a folder, but for those that another process holds or that are kept.
  void RemoveLeftovers(const std::string& folder, std::string_view pattern);

  /// Whether a file lies under this temporary name that is not to be replaced.
  [[nodiscard]] bool IsKept(std::string_view path) const;
  /// What lies under this temporary name is not to be replaced, as long as it is there.
  void Keep(const std::string& path) { kept_.push_back(path); }
  /// While leftovers are spared, no file under a temporary name is to be replaced.
  void SpareLeftovers(bool spared) { leftoversSpared_ = spared; }

 private:
  [[nodiscard]] MovedSong KeepUnderOwnName(CaptureRecord& capture, const std::string& cause,
                                           base::DateValue now);
  void Settle(CaptureRecord& capture, const std::string& path);

  platform::Files& files_;
  platform::FileSync& sync_;
  base::Journal& journal_;
  std::vector<std::string> kept_;  // temporary names
  bool leftoversSpared_ = false;
};

/// The next name to try for a song whose name is taken: a last digit from 1 to 8 goes up by one, everything
/// else gets a 1 appended. So the copies of x are x1 to x9, then x91.
void AdvanceName(std::string& fileName);

}  // namespace kestrune::recorder
