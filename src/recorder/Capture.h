#pragma once

#include <cstdint>
#include <string>

#include "base/Journal.h"
#include "config/formats/FileSpecs.h"
#include "platform/Files.h"
#include "recorder/AudioObjects.h"
#include "recorder/State.h"

namespace kestrune::recorder {

/// Starts and stops the two alternating captures and moves the sound into the one that is being written.
class Capture {
 public:
  /// All must outlive the object.
  Capture(AudioObjects& audio, State& state, config::FileSpecs& fileSpecs, platform::Files& files,
          base::Journal& journal);

  /// Takes the block handler of a recorder that has just been made.
  void ConnectRecorder();

  /// Prepares the slot and records into the file. `result` is negative on failure, which is logged and
  /// nothing more; a slot other than 0 or 1 opens nothing.
  void RecordStart(std::int16_t slot, const std::string& fileName, std::int32_t& result);

  /// Takes over the sound up to now, closes the slot's file and writes its tags.
  void RecordStop(std::int16_t slot);

  /// The file under which the slot's capture lies until its fate is known.
  [[nodiscard]] std::string TemporaryFile(std::int16_t slot) const;
  /// Its name in the folder: "Capture", the slot's number, and the extension behind a point.
  [[nodiscard]] static std::string TemporaryName(std::int16_t slot, const std::string& extension);

 private:
  void AudioRecord_EndArrayRecord();

  AudioObjects& audio_;
  RecordingState& state_;
  config::FileSpecs& fileSpecs_;
  const config::Settings& settings_;
  const radio::RadioState& radio_;
  platform::Files& files_;
  base::Journal& journal_;
};

}  // namespace kestrune::recorder
