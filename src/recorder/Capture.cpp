#include "recorder/Capture.h"

#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Version.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::int32_t kBlockMs = 100;
// Nobody has so many units in one folder: something else is wrong with it.
constexpr int kLastNumber = 99;

}  // namespace

Capture::Capture(AudioObjects& audio, SoundMeter& meter, State& state, config::FileSpecs& fileSpecs,
                 SongFiles& songFiles, base::Journal& journal)
    : audio_(audio),
      meter_(meter),
      state_(state.Recording),
      watch_(state.Watch),
      fileSpecs_(fileSpecs),
      settings_(state.Settings),
      radio_(state.Radio),
      modes_(state),
      songFiles_(songFiles),
      journal_(journal),
      link_(state.Link) {}

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
  CaptureRecord& record = Record(slot);
  record.LengthMs = 0;
  record.Outcome = {};
  record.Outcome.Event = modes_.Event();
  record.Outcome.Modes = modes_.InForce();
  record.Outcome.RadioLost = !link_.Up();

  std::string path = fileName;
  const platform::NumberedResult created = CreateFree(slot, path);
  result = created.Number;
  if (!created) {
    record.Outcome.StartFailure = created.Cause;
    if (!NewFailure(created.Cause)) return;
    journal_.DoLog(fmt::format("Error {} creating output file", result));
    journal_.DoLog(fmt::format("Cannot create \"{}\": {}", path, created.Cause));
    return;
  }
  record.Outcome.File = path;
  meter_.Begin();
  sampleRate_ = file->FormatValues().SampleRate;
  recorder.SetFormat(file->FormatValues());
  recorder.SetBlockSize(recorder.TimeToBytes(kBlockMs));
  recorder.Prepare();
  const platform::NumberedResult started = recorder.StartRecording();
  result = started.Number;
  if (!started) {
    record.Outcome.StartFailure = started.Cause;
    base::Ignored(file->Close());
    journal_.DoLog(fmt::format("Error {} recording input", result));
    journal_.DoLog("Cannot record from the input device: " + started.Cause);
    return;
  }
  // The watch says it once, and when it is over.
  if (const std::string error = recorder.OpenError(); !error.empty() && !settings_.Watch) {
    journal_.DoLog(fmt::format("No sound from the input device: {}; it is tried again each second", error));
  }
}

platform::NumberedResult Capture::CreateFree(std::int16_t slot, std::string& path) {
  const CaptureRecord& record = Record(slot);
  platform::CaptureFile& file = *audio_.File(slot);
  // Every second number: the other slot looks for its own.
  for (int number = slot + 2;; number += 2) {
    platform::NumberedResult created{.Number = platform::kNameHeld,
                                     .Cause = "a song is kept under this name"};
    if (!songFiles_.IsKept(path)) created = file.Create(path);
    if (created.Number != platform::kNameHeld || number > kLastNumber) return created;
    const std::string next = record.Folder + TemporaryName(number, record.Extension);
    journal_.DoLog(fmt::format("\"{}\" is in use, capturing to \"{}\" instead", path, next));
    path = next;
  }
}

void Capture::RecordStop(std::int16_t slot) {
  if (audio_.AudioRecord == nullptr || audio_.File(0) == nullptr) return;
  audio_.AudioRecord->Stop();
  platform::CaptureFile* const file = audio_.File(slot);
  if (file == nullptr) return;
  CaptureRecord& record = Record(slot);
  if (slot == state_.CaptureSlot) TakeSound(record);
  NoteWriting(record, file->Close());
  WriteTags(record);
}

void Capture::TakeSound(CaptureRecord& record) {
  CaptureOutcome& outcome = record.Outcome;
  if (outcome.File.empty()) return;
  outcome.Overloaded = meter_.Overloaded();
  outcome.FullScalePercent = meter_.FullScalePercent();
  outcome.Sound = audio_.AudioRecord->Sound();
  outcome.MissingMs = outcome.Sound.Lost() * 1000 / sampleRate_;
  if (outcome.MissingMs < CaptureOutcome::kNoticeableMs) return;
  journal_.DoLog(fmt::format("{:.1f} s of sound are missing from \"{} - {}\", the first at {}",
                             static_cast<double>(outcome.MissingMs) / 1000, record.Artist, record.Song,
                             FormatSeconds(outcome.Sound.Gaps.front().At / sampleRate_)));
}

void Capture::WriteTags(const CaptureRecord& record) {
  const std::string& path = record.Outcome.File;
  if (path.empty() || !songFiles_.Exists(path)) return;
  const platform::Tags tags{
      .Artist = record.Artist,
      .Title = record.Song,
      .Comment = "Radio ID: " + radio_.RadioID,
      .Encoder = fmt::format("Kestrune {}.{}", base::kVersionMajor, base::kVersionMinor),
      .Kind = 1,
  };
  const base::Result written = audio_.AudioInformation->Write(path, tags);
  // A file that took no more sound takes no tags either, and the log has said so.
  if (written || !record.Outcome.WriteFailure.empty()) return;
  journal_.DoLog(fmt::format("Cannot write the tags of \"{}\": {}", path, written.Cause()));
}

void Capture::Release(std::int16_t slot) {
  if (platform::CaptureFile* const file = audio_.File(slot); file != nullptr) file->Release();
}

std::string Capture::TemporaryFile(std::int16_t slot) const {
  const CaptureRecord& record = state_.CaptureSlots[static_cast<std::size_t>(slot)];
  return record.Folder + TemporaryName(slot, record.Extension);
}

std::string Capture::TemporaryName(int number, const std::string& extension) const {
  if (multiUnit_.empty()) return fmt::format("Capture{}.{}", number, extension);
  return fmt::format("Capture{}-{}.{}", number, multiUnit_, extension);
}

void Capture::AudioRecord_EndArrayRecord() {
  platform::CaptureFile& file = *audio_.File(state_.CaptureSlot);
  CaptureRecord& record = Record(state_.CaptureSlot);
  const std::span<const std::int16_t> block = audio_.AudioRecord->GetBlock();
  meter_.Take(block);
  NoteWriting(record, file.WriteBlock(block));
  record.LengthMs = file.Length();
}

bool Capture::NewFailure(const std::string& cause) {
  if (!settings_.Watch) return true;
  return std::exchange(watch_.WriteFailure, cause).empty();
}

void Capture::NoteWriting(CaptureRecord& record, const base::Result& written) {
  CaptureOutcome& outcome = record.Outcome;
  if (written || outcome.File.empty() || !outcome.WriteFailure.empty()) return;
  outcome.WriteFailure = written.Cause();
  if (NewFailure(written.Cause()))
    journal_.DoLog(fmt::format("Cannot write \"{}\": {}", outcome.File, written.Cause()));
}

}  // namespace kestrune::recorder
