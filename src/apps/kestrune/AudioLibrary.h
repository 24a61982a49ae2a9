#pragma once

#include <memory>

#include "base/EventLoop.h"
#include "platform/AudioLibrary.h"
#include "platform/SoundSource.h"

namespace kestrune::apps {

/// The real audio objects: the recorder over the chosen sound source, the encoders, the tag writer.
class AudioLibrary final : public platform::AudioLibrary {
 public:
  /// Both must outlive what is made.
  AudioLibrary(base::EventLoop& loop, platform::SoundSource& source) : loop_(loop), source_(source) {}

  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override;
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override;
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override;

 private:
  base::EventLoop& loop_;
  platform::SoundSource& source_;
};

}  // namespace kestrune::apps
