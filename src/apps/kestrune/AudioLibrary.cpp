#include "apps/kestrune/AudioLibrary.h"

#include "platform/codec/EncodedFile.h"
#include "platform/codec/FileTagWriter.h"
#include "platform/ring/RingRecorder.h"

namespace kestrune::apps {

std::unique_ptr<platform::AudioRecorder> AudioLibrary::MakeAudioRecorder() {
  return std::make_unique<platform::RingRecorder>(loop_, source_);
}

std::unique_ptr<platform::CaptureFile> AudioLibrary::MakeCaptureFile() {
  return std::make_unique<platform::EncodedFile>();
}

std::unique_ptr<platform::TagWriter> AudioLibrary::MakeTagWriter() {
  return std::make_unique<platform::FileTagWriter>();
}

}  // namespace kestrune::apps
