#pragma once

#include <memory>

#include "platform/AudioLibrary.h"
#include "support/MemoryFiles.h"
#include "support/RecordingCaptureFile.h"

namespace kestrune::test {

/// Makes capture files in memory, and nothing else.
class TrialAudio final : public platform::AudioLibrary {
 public:
  explicit TrialAudio(MemoryFiles& files) : files_(files) {}
  [[nodiscard]] std::unique_ptr<platform::AudioRecorder> MakeAudioRecorder() override { return nullptr; }
  [[nodiscard]] std::unique_ptr<platform::CaptureFile> MakeCaptureFile() override {
    auto file = std::make_unique<RecordingCaptureFile>(&files_);
    file->FailCreate = FailCreate;
    file->FailWrites = FailWrites;
    return file;
  }
  [[nodiscard]] std::unique_ptr<platform::TagWriter> MakeTagWriter() override { return nullptr; }

  bool FailCreate = false;
  bool FailWrites = false;

 private:
  MemoryFiles& files_;
};

}  // namespace kestrune::test
