#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "base/Journal.h"
#include "platform/CaptureMender.h"
#include "platform/Files.h"
#include "recorder/SongFiles.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// After a crash or a power cut: captures of this unit that a run did not close are mended and moved to the folder
/// "Recovered" in the folder of recordings, under artist and title if their tags have them, else under the time of their
/// last sound. Nothing is replaced. A capture without any sound is removed without a word, and one that cannot be mended
/// is moved as it is. Until all is done, leftovers are spared from the captures of this run. Does nothing while the
/// setting Watch is off.
class Recovery {
 public:
  /// All must outlive the object.
  Recovery(const State& state, platform::CaptureMender& mender, platform::Files& files, SongFiles& songFiles,
           base::Journal& journal);
  ~Recovery() { mender_.Stop(); }
  Recovery(const Recovery&) = delete;
  Recovery& operator=(const Recovery&) = delete;

  /// Begins, for the unit of this name, empty for a single one. The rest follows from the event loop.
  void Start(const std::string& multiUnit);
  /// What is not mended yet is left to the next start.
  void Stop();

 private:
  void Found(const std::vector<std::string>& paths, const base::Result& looked);
  void MendNext();
  void Settle(const std::string& path, const platform::MendedCapture& mended);
  /// Where the file lies now: its old place if it could not be moved.
  [[nodiscard]] std::string MoveAway(const std::string& path, const platform::MendedCapture& mended);
  /// Renames to the first name of that kind that is free; empty if none can be had.
  [[nodiscard]] std::string Rename(const std::string& path, const std::string& name);

  const config::Settings& settings_;
  platform::CaptureMender& mender_;
  platform::Files& files_;
  SongFiles& songFiles_;
  base::Journal& journal_;
  std::string multiUnit_;
  std::string fileDir_;  // at the start
  std::deque<std::string> waiting_;
  bool allFound_ = false;
};

/// Whether a file of that name is a capture of the unit, in one of the formats; see Capture::TemporaryName.
[[nodiscard]] bool IsTemporaryName(std::string_view name, std::string_view multiUnit);

}  // namespace kestrune::recorder
