#include "recorder/Capture.h"

#include <utility>
#include <variant>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "base/Version.h"
#include "cut/Lags.h"
#include "recorder/SongName.h"

namespace kestrune::recorder {
namespace {

constexpr std::int32_t kBlockMs = 100;
// Nobody has so many units in one folder: something else is wrong with it.
constexpr int kLastNumber = 99;
// A cut is put so much before an onset at most.
constexpr int kOnsetMs = 50;

}  // namespace

Capture::Capture(State& state, const Parts& parts, base::Journal& journal)
    : audio_(parts.Audio),
      meter_(parts.Meter),
      cuts_(parts.Cuts),
      state_(state.Recording),
      watch_(state.Watch),
      fileSpecs_(parts.FileSpecs),
      settings_(state.Settings),
      radio_(state.Radio),
      modes_(state),
      songFiles_(parts.SongFiles),
      journal_(journal),
      link_(state.Link) {}

void Capture::ConnectRecorder() {
  audio_.AudioRecord->SetBlockHandler([this] { AudioRecord_EndArrayRecord(); });
}

void Capture::RecordStart(std::int16_t slot, const std::string& fileName, std::int32_t& result) {
  if (audio_.AudioRecord == nullptr) return;
  SetGain();
  fileSpecs_.SetFileSpecs(slot);
  audio_.AudioRecord->SetDeviceIndex(settings_.InputDevice);
  platform::CaptureFile* const file = audio_.File(slot);
  if (file == nullptr) return;
  CaptureRecord& record = Record(slot);
  BeginOutcome(record);
  const platform::NumberedResult created = Open(slot, record, fileName);
  result = created.Number;
  // What is held back begins the next file that can be created.
  if (!created && !Listening()) return;
  meter_.Begin();
  held_.Begin(file->FormatValues());
  const platform::NumberedResult started = StartRecorder(file->FormatValues());
  if (created) result = started.Number;
  if (!started) {
    record.Outcome.StartFailure = started.Cause;
    base::Ignored(file->Close());
    return;
  }
  // The watch says it once, and when it is over.
  if (const std::string error = audio_.AudioRecord->OpenError(); !error.empty() && !settings_.Watch) {
    journal_.DoLog(fmt::format("No sound from the input device: {}; it is tried again each second", error));
  }
}

void Capture::SetGain() {
  platform::AudioRecorder& recorder = *audio_.AudioRecord;
  recorder.SetAgcEnabled(settings_.AGCEnabled);
  if (!settings_.AGCEnabled) return;
  recorder.SetAgcAttackTime(settings_.AGCAttackTime);
  recorder.SetAgcHighLevel(settings_.AGCHighLevel);
  recorder.SetAgcLowLevel(settings_.AGCLowLevel);
}

void Capture::BeginOutcome(CaptureRecord& record) {
  record.LengthMs = record.WrittenMs = 0;
  record.Outcome = {};
  record.Outcome.Event = modes_.Event();
  record.Outcome.Modes = modes_.InForce();
  record.Outcome.RadioLost = !link_.Up();
}

platform::NumberedResult Capture::StartRecorder(const platform::PcmFormat& format) {
  platform::AudioRecorder& recorder = *audio_.AudioRecord;
  format_ = format;
  recorder.SetFormat(format);
  recorder.SetBlockSize(recorder.TimeToBytes(kBlockMs));
  recorder.Prepare();
  recorderFrom_ = held_.End();
  platform::NumberedResult started = recorder.StartRecording();
  recording_ = static_cast<bool>(started);
  if (!started) {
    journal_.DoLog(fmt::format("Error {} recording input", started.Number));
    journal_.DoLog("Cannot record from the input device: " + started.Cause);
  }
  return started;
}

platform::NumberedResult Capture::Open(std::int16_t slot, CaptureRecord& record, std::string path) {
  CaptureOutcome& outcome = record.Outcome;
  platform::NumberedResult created = CreateFree(slot, record, path);
  if (created) {
    outcome.File = path;
    return created;
  }
  outcome.StartFailure = created.Cause;
  if (NewFailure(created.Cause)) {
    journal_.DoLog(fmt::format("Error {} creating output file", created.Number));
    journal_.DoLog(fmt::format("Cannot create \"{}\": {}", path, created.Cause));
  }
  return created;
}

platform::NumberedResult Capture::CreateFree(std::int16_t slot, const CaptureRecord& record,
                                             std::string& path) {
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
  Stop(slot, false);
}

void Capture::StopPiece(std::int16_t slot) {
  Stop(slot, true);
}

void Capture::Stop(std::int16_t slot, bool goesOn) {
  if (audio_.AudioRecord == nullptr || audio_.File(0) == nullptr) return;
  StopRecorder();
  if (audio_.File(slot) == nullptr) return;
  CaptureRecord& record = Record(slot);
  if (slot == state_.CaptureSlot) {
    if (!goesOn || record.Outcome.WriteFailure.empty()) held_.Flush(IntoFile());
    record.LengthMs = record.WrittenMs;
    NoteLevel(record.Outcome);
    TakeSound(record, held_.Start(), held_.Written());
    if (!goesOn) held_.Drop();
  }
  Close(slot, record);
}

void Capture::StopRecorder() {
  audio_.AudioRecord->Stop();
  if (!recording_) return;
  recording_ = false;
  for (platform::SoundGap gap : audio_.AudioRecord->Sound().Gaps) {
    gap.At += recorderFrom_;
    gaps_.push_back(gap);
  }
}

void Capture::Close(std::int16_t slot, CaptureRecord& record) {
  NoteWriting(record, audio_.File(slot)->Close());
  WriteTags(record);
}

std::int64_t Capture::FrameNow() const {
  return held_.End() + (audio_.AudioRecord != nullptr ? audio_.AudioRecord->FramesWaiting() : 0);
}

std::int64_t Capture::MsSince(std::int64_t frame) const {
  return (held_.End() - frame) * 1000 / format_.SampleRate;
}

bool Capture::AwaitCut(std::int16_t next, AwaitedCut cut) {
  if (audio_.AudioRecord == nullptr || audio_.File(next) == nullptr || !recording_) return false;
  fileSpecs_.SetFileSpecs(next);
  if (Writing().Outcome.File.empty() || audio_.File(next)->FormatValues() != format_) return false;
  SetGain();
  audio_.AudioRecord->SetDeviceIndex(settings_.InputDevice);
  StopRecorder();
  CaptureRecord& inHand = Record(state_.CaptureSlot);
  NoteLevel(inHand.Outcome);
  cut.Song = std::exchange(inHand, {});
  cut.Slot = state_.CaptureSlot;
  state_.AwaitedCuts.push_back(std::move(cut));
  state_.CaptureSlot = next;
  meter_.Begin();
  BeginOutcome(Record(next));
  Record(next).Format = fileSpecs_.Format();
  const platform::NumberedResult started = StartRecorder(format_);
  if (!started) Record(next).Outcome.StartFailure = started.Cause;
  if (state_.AwaitedCuts.size() == 1) LimitFile();
  return true;
}

void Capture::LimitFile() {
  const std::int64_t stamp = state_.AwaitedCuts.front().Stamp;
  held_.AwaitCut(stamp + std::int64_t{cut::kLowestLag - kOnsetMs} * format_.SampleRate / 1000);
}

void Capture::SetCut() {
  const AwaitedCut& cut = state_.AwaitedCuts.front();
  held_.SetCut(cut.Frame.value_or(cut.Stamp), cut.OverlapMs * format_.SampleRate / 1000);
}

AwaitedCut Capture::CutOver() {
  CaptureRecord& song = Writing();
  const std::int64_t begin = held_.Start();
  song.Outcome.HeldBackMs = MsSince(*held_.ChosenCut());
  TakeSound(song, begin, *held_.ChosenCut());
  held_.Cut(IntoFile());
  song.LengthMs = song.WrittenMs;
  Close(WritingSlot(), song);
  AwaitedCut ended = std::move(state_.AwaitedCuts.front());
  state_.AwaitedCuts.pop_front();

  const std::int16_t slot = WritingSlot();
  CaptureRecord& next = Writing();
  if (next.Outcome.StartFailure.empty()) {
    // Another song may have been prepared for this slot meanwhile.
    if (!std::holds_alternative<std::monostate>(next.Format)) audio_.File(slot)->SetFormat(next.Format);
    base::Ignored(Open(slot, next, TemporaryFile(slot, next)));
  }
  if (state_.AwaitedCuts.empty()) return ended;
  LimitFile();
  if (state_.AwaitedCuts.front().Frame) SetCut();
  return ended;
}

HeldBack::File Capture::IntoFile() {
  return [this, slot = WritingSlot(), &record = Writing()](std::span<const std::int16_t> samples) {
    platform::CaptureFile& file = *audio_.File(slot);
    const base::Result written = file.WriteBlock(samples);
    NoteWriting(record, written);
    if (written) record.LengthMs = record.WrittenMs = file.Length();
    return written.Ok();
  };
}

void Capture::NoteLevel(CaptureOutcome& outcome) const {
  outcome.Overloaded = meter_.Overloaded();
  outcome.FullScalePercent = meter_.FullScalePercent();
}

void Capture::TakeSound(CaptureRecord& record, std::int64_t begin, std::int64_t end) {
  CaptureOutcome& outcome = record.Outcome;
  if (outcome.File.empty()) return;
  std::vector<platform::SoundGap> gaps = gaps_;
  if (recording_) {
    for (platform::SoundGap gap : audio_.AudioRecord->Sound().Gaps) {
      gap.At += recorderFrom_;
      gaps.push_back(gap);
    }
  }
  // A gap at the end of a stopped recorder's sound belongs to the file that got all of it.
  const std::int64_t limit = recording_ ? end : end + 1;
  outcome.Sound = {.Frames = end - begin, .Gaps = {}};
  for (const platform::SoundGap& gap : gaps) {
    if (gap.At >= begin && gap.At < limit)
      outcome.Sound.Gaps.push_back({.At = gap.At - begin, .Frames = gap.Frames});
  }
  std::erase_if(gaps_, [limit](const platform::SoundGap& gap) { return gap.At < limit; });
  outcome.MissingMs = outcome.Sound.Lost() * 1000 / format_.SampleRate;
  if (outcome.MissingMs < CaptureOutcome::kNoticeableMs) return;
  journal_.DoLog(fmt::format("{:.1f} s of sound are missing from \"{} - {}\", the first at {}",
                             static_cast<double>(outcome.MissingMs) / 1000, record.Artist, record.Song,
                             FormatSeconds(outcome.Sound.Gaps.front().At / format_.SampleRate)));
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

std::string Capture::TemporaryFile(std::int16_t slot, const CaptureRecord& record) const {
  return record.Folder + TemporaryName(slot, record.Extension);
}

std::string Capture::TemporaryName(int number, const std::string& extension) const {
  if (multiUnit_.empty()) return fmt::format("Capture{}.{}", number, extension);
  return fmt::format("Capture{}-{}.{}", number, multiUnit_, extension);
}

void Capture::AudioRecord_EndArrayRecord() {
  const std::span<const std::int16_t> block = audio_.AudioRecord->GetBlock();
  meter_.Take(block);
  if (listener_) listener_(block, format_);
  if (Listening() || held_.AwaitsCut()) {
    cuts_.Hear(block, held_.End(), format_);
  } else {
    cuts_.Forget();
  }
  held_.Take(block, Listening(), IntoFile());
  // What is held back counts as captured.
  if (held_.Written() < held_.End())
    Record(state_.CaptureSlot).LengthMs = MsSince(held_.AwaitsCut() ? recorderFrom_ : held_.Start());
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
