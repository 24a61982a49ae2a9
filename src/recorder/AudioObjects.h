#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "platform/AudioLibrary.h"

namespace kestrune::recorder {

/// The audio objects of a run: made when the program loads, released when it closes, null before and after.
struct AudioObjects {
  std::unique_ptr<platform::AudioRecorder> AudioRecord;
  std::array<std::unique_ptr<platform::CaptureFile>, 2> CaptureFiles;  ///< one a slot
  std::unique_ptr<platform::TagWriter> AudioInformation;

  void Create(platform::AudioLibrary& library) {
    AudioRecord = library.MakeAudioRecorder();
    for (auto& file : CaptureFiles) file = library.MakeCaptureFile();
    AudioInformation = library.MakeTagWriter();
  }
  void Release() {
    AudioRecord.reset();
    for (auto& file : CaptureFiles) file.reset();
    AudioInformation.reset();
  }

  /// The file of a slot; null for a number that is no slot, and while there are no objects.
  [[nodiscard]] platform::CaptureFile* File(std::int16_t slot) const {
    return slot == 0 || slot == 1 ? CaptureFiles[static_cast<std::size_t>(slot)].get() : nullptr;
  }
};

}  // namespace kestrune::recorder
