#include "presenters/TestRecording.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"

namespace kestrune::presenters {

void TestRecording::Begin(const platform::CaptureFormat& format, std::string_view extension) {
  Clear();
  folder_ = outside_.Files.CreatePrivateFolder(outside_.Environment.Variable("temp"));
  if (folder_.empty()) return GiveUp("No temporary folder could be made.");
  path_ = fmt::format("{}/Test recording.{}", folder_, extension);
  file_ = outside_.Audio.MakeCaptureFile();
  file_->SetFormat(format);
  const platform::NumberedResult created = file_->Create(path_);
  if (!created) return GiveUp(fmt::format("The test cannot be recorded: {}.", created.Cause));
  const platform::PcmFormat pcm = file_->FormatValues();
  samplesWanted_ = static_cast<std::size_t>(pcm.SampleRate) * static_cast<std::size_t>(pcm.Channels) *
                   static_cast<std::size_t>(kSeconds);
  samplesTaken_ = 0;
}

void TestRecording::Take(std::span<const std::int16_t> samples) {
  if (!Running()) return;
  samples = samples.first(std::min(samples.size(), samplesWanted_ - samplesTaken_));
  const base::Result written = file_->WriteBlock(samples);
  if (!written) return GiveUp(fmt::format("The test cannot be recorded: {}.", written.Cause()));
  samplesTaken_ += samples.size();
  if (samplesTaken_ == samplesWanted_) Finish();
}

void TestRecording::Finish() {
  const base::Result closed = file_->Close();
  if (!closed) return GiveUp(fmt::format("The test cannot be recorded: {}.", closed.Cause()));
  file_->Release();
  file_.reset();
  message_ = outside_.Shell.Open(path_) ? "Recorded; your player plays it."
                                        : "Recorded, but no player could be started for it.";
}

void TestRecording::GiveUp(std::string why) {
  Remove();
  message_ = std::move(why);
}

void TestRecording::Clear() {
  Remove();
  message_.clear();
}

void TestRecording::Remove() {
  if (file_ != nullptr) {
    base::Ignored(file_->Close());
    file_->Release();
    file_.reset();
  }
  if (!path_.empty()) base::Ignored(outside_.Files.Remove(std::exchange(path_, {})));
  if (!folder_.empty()) base::Ignored(outside_.Files.RemoveFolder(std::exchange(folder_, {})));
}

double TestRecording::Part() const {
  if (!Running()) return 0;
  return static_cast<double>(samplesTaken_) / static_cast<double>(samplesWanted_);
}

std::string TestRecording::Message() const {
  if (!Running()) return message_;
  return fmt::format("Recording: {} of {} seconds", static_cast<int>(Part() * kSeconds), kSeconds);
}

}  // namespace kestrune::presenters
