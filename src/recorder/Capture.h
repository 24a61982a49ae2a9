#pragma once

#include <cstdint>
#include <string>

#include "base/Journal.h"
#include "config/formats/FileSpecs.h"
#include "recorder/AudioObjects.h"
#include "recorder/Modes.h"
#include "recorder/SongFiles.h"
#include "recorder/SoundMeter.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Starts and stops the two alternating captures and moves the sound into the one that is being written.
class Capture {
 public:
  /// All must outlive the object.
  Capture(AudioObjects& audio, SoundMeter& meter, State& state, config::FileSpecs& fileSpecs,
          SongFiles& songFiles, base::Journal& journal);

  /// Takes the block handler of a recorder that has just been made.
  void ConnectRecorder();

  /// The unit whose captures these are, empty for a single one; it becomes part of the temporary names.
  void SetMultiUnit(const std::string& multiUnit) { multiUnit_ = multiUnit; }

  /// Begins the slot's outcome and records into the file, or into the next one whose name nobody holds. `result` is
  /// negative on failure, which is logged and nothing more; a slot other than 0 or 1 opens nothing.
  void RecordStart(std::int16_t slot, const std::string& fileName, std::int32_t& result);

  /// Takes over the sound up to now, closes the slot's file and writes its tags. The file stays held.
  void RecordStop(std::int16_t slot);
  /// Lets go of the slot's file, once it is renamed or removed.
  void Release(std::int16_t slot);

  /// Where a capture of the slot is to be created.
  [[nodiscard]] std::string TemporaryFile(std::int16_t slot) const;
  /// A temporary name: "Capture", the number, the unit after a hyphen if there is one, a point and the extension. The
  /// number is the slot's, or a higher one of the same parity if that name was held.
  [[nodiscard]] std::string TemporaryName(int number, const std::string& extension) const;

 private:
  void AudioRecord_EndArrayRecord();
  /// Creates the file under the first name that nobody holds, beginning with `path`, which is that name afterwards.
  platform::NumberedResult CreateFree(std::int16_t slot, std::string& path);
  /// Takes what came and what is missing into the outcome.
  void TakeSound(CaptureRecord& record);
  void WriteTags(const CaptureRecord& record);
  /// Whether a failure to write has to be said: not again while the watch tries to write.
  [[nodiscard]] bool NewFailure(const std::string& cause);
  /// Keeps the first failure and logs it.
  void NoteWriting(CaptureRecord& record, const base::Result& written);
  [[nodiscard]] CaptureRecord& Record(std::int16_t slot) {
    return state_.CaptureSlots[static_cast<std::size_t>(slot)];
  }

  AudioObjects& audio_;
  SoundMeter& meter_;
  RecordingState& state_;
  WatchState& watch_;
  config::FileSpecs& fileSpecs_;
  const config::Settings& settings_;
  const radio::RadioState& radio_;
  Modes modes_;
  SongFiles& songFiles_;
  base::Journal& journal_;
  const radio::LinkStatus& link_;
  std::string multiUnit_;
  std::int32_t sampleRate_ = 1;  // of the capture that runs
};

}  // namespace kestrune::recorder
