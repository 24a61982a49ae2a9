#include "recorder/Capture.h"

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Version.h"

namespace kestrune::recorder {
namespace {

constexpr std::int32_t kBlockMs = 100;

}  // namespace

Capture::Capture(AudioObjects& audio, State& state, config::FileSpecs& fileSpecs, platform::Files& files,
                 base::Journal& journal)
    : audio_(audio),
      state_(state.Recording),
      fileSpecs_(fileSpecs),
      settings_(state.Settings),
      radio_(state.Radio),
      files_(files),
      journal_(journal) {}

void Capture::ConnectRecorder() {
  audio_.AudioRecord->SetBlockHandler([this] { AudioRecord_EndArrayRecord(); });
}

void Capture::RecordStart(std::int16_t slot, const std::string& fileName, std::int32_t& result) {
  if (audio_.AudioRecord == nullptr) return;
  platform::AudioRecorder& recorder = *audio_.AudioRecord;
  recorder.SetAgcEnabled(settings_.AGCEnabled);
  if (settings_.AGCEnabled) {
    recorder.SetAgcAttackTime(settings_.AGCAttackTime);
    recorder.SetAgcHighLevel(settings_.AGCHighLevel);
    recorder.SetAgcLowLevel(settings_.AGCLowLevel);
  }
  fileSpecs_.SetFileSpecs(slot);
  recorder.SetDeviceIndex(settings_.InputDevice);
  platform::CaptureFile* const file = audio_.File(slot);
  if (file == nullptr) return;
  state_.CaptureSlots[static_cast<std::size_t>(slot)].LengthMs = 0;

  result = file->Create(fileName).Number;
  if (result < 0) {
    journal_.DoLog(fmt::format("Error {} creating output file", result));
    return;
  }
  recorder.SetFormat(file->FormatValues());
  recorder.SetBlockSize(recorder.TimeToBytes(kBlockMs));
  recorder.Prepare();
  result = recorder.StartRecording().Number;
  if (result < 0) {
    base::Ignored(file->Close());
    journal_.DoLog(fmt::format("Error {} recording input", result));
    return;
  }
  if (const std::string error = recorder.OpenError(); !error.empty()) {
    journal_.DoLog(fmt::format("No sound from the input device: {}; it is tried again each second", error));
  }
}

void Capture::RecordStop(std::int16_t slot) {
  if (audio_.AudioRecord == nullptr || audio_.File(0) == nullptr) return;
  audio_.AudioRecord->Stop();
  platform::CaptureFile* const file = audio_.File(slot);
  if (file == nullptr) return;
  base::Ignored(file->Close());

  const CaptureRecord& record = state_.CaptureSlots[static_cast<std::size_t>(slot)];
  const platform::Tags tags{
      .Artist = record.Artist,
      .Title = record.Song,
      .Comment = "Radio ID: " + radio_.RadioID,
      .Encoder = fmt::format("Kestrune {}.{}", base::kVersionMajor, base::kVersionMinor),
      .Kind = 1,
  };
  const std::string path = TemporaryFile(slot);
  if (files_.Exists(path)) base::Ignored(audio_.AudioInformation->Write(path, tags));
}

std::string Capture::TemporaryFile(std::int16_t slot) const {
  const CaptureRecord& record = state_.CaptureSlots[static_cast<std::size_t>(slot)];
  return record.Folder + TemporaryName(slot, record.Extension);
}

std::string Capture::TemporaryName(std::int16_t slot, const std::string& extension) {
  return fmt::format("Capture{}.{}", slot, extension);
}

void Capture::AudioRecord_EndArrayRecord() {
  platform::CaptureFile& file = *audio_.File(state_.CaptureSlot);
  base::Ignored(file.WriteBlock(audio_.AudioRecord->GetBlock()));
  state_.CaptureSlots[static_cast<std::size_t>(state_.CaptureSlot)].LengthMs = file.Length();
}

}  // namespace kestrune::recorder
