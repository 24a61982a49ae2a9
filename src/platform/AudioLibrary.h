#pragma once

#include <memory>

#include "platform/AudioRecorder.h"
#include "platform/CaptureFile.h"
#include "platform/TagWriter.h"

namespace kestrune::platform {

/// Makes the audio objects of a run. The library must outlive what it made. Making one never fails; what
/// cannot work shows when it is used.
class AudioLibrary {
 public:
  virtual ~AudioLibrary() = default;

  [[nodiscard]] virtual std::unique_ptr<AudioRecorder> MakeAudioRecorder() = 0;
  [[nodiscard]] virtual std::unique_ptr<CaptureFile> MakeCaptureFile() = 0;
  [[nodiscard]] virtual std::unique_ptr<TagWriter> MakeTagWriter() = 0;
};

}  // namespace kestrune::platform
