#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "base/Journal.h"
#include "config/formats/FileSpecs.h"
#include "recorder/Chronicle.h"
#include "recorder/Modes.h"
#include "recorder/Shelving.h"
#include "recorder/SongFiles.h"
#include "recorder/State.h"
#include "schedule/lists/Restrictions.h"

namespace kestrune::recorder {

/// The ending of a capture that ends now.
[[nodiscard]] CaptureEnding EndingNow(const State& state);

/// The fate of a finished capture: tested for its length, against the lists and for duplicates, then moved
/// to its name or deleted, with one line in the log and one counter changed. Nothing is called recorded before it has
/// its name.
class Disposition {
 public:
  /// What a fate is decided with. All must outlive the object.
  struct Parts {
    const config::FileSpecs& FileSpecs;
    const schedule::Restrictions& Restrictions;
    recorder::SongFiles& SongFiles;
    recorder::Chronicle& Chronicle;
    recorder::Shelving& Shelving;
  };

  Disposition(State& state, const Parts& parts, base::EventLoop& loop, base::Journal& journal);

  /// Called while the next capture is already running. The capture's `Ending` says how it ended.
  void Dispose(CaptureRecord& capture);
  /// The fate of a capture for which nobody was recording: kept if a user asked for it. Serves no events.
  void DisposeUnwanted(CaptureRecord& capture);

 private:
  struct Verdict {
    bool Keep = true;
    std::string Suffix;
    std::int64_t Seconds = 0;
    platform::SongFate Fate = platform::SongFate::Kept;
    std::string Reason;    ///< of a fate that is not to be kept under the final name
    bool ForUser = false;  ///< it is kept only because a user asked for it
  };

  /// A test is failed: true, and so noted, if a user wants the song all the same.
  static bool PassFor(const CaptureRecord& capture, Verdict& verdict);
  void TestLength(const CaptureRecord& capture, Verdict& verdict);
  void TestSound(const CaptureRecord& capture, Verdict& verdict);
  void TestLists(const CaptureRecord& capture, Verdict& verdict);
  void TestDuplicates(CaptureRecord& capture, Verdict& verdict);
  /// Whether it gets another name if its own is in use.
  [[nodiscard]] bool SavesDuplicate(const CaptureRecord& capture) const;
  void Keep(CaptureRecord& capture, Verdict& verdict);
  /// What follows the tests: the file's way, and the row of the record.
  void CarryOut(CaptureRecord& capture, Verdict& verdict);
  void Drop(CaptureRecord& capture, platform::SongFate fate, std::string_view reason, bool incomplete);
  /// Adds it to the songs that have ended.
  void Remember(const CaptureRecord& capture, platform::SongFate fate);
  void Reject(const CaptureRecord& capture, Verdict& verdict, platform::SongFate fate,
              const std::string& why);
  [[nodiscard]] std::string LogLine(std::string_view head, const CaptureRecord& capture,
                                    const Verdict& verdict, std::string_view tail) const;

  RecordingState& state_;
  const config::Settings& settings_;
  const config::FileSpecs& fileSpecs_;
  const schedule::Restrictions& restrictions_;
  SongFiles& songFiles_;
  base::EventLoop& loop_;
  base::Journal& journal_;
  Chronicle& chronicle_;
  Shelving& shelving_;
};

}  // namespace kestrune::recorder
