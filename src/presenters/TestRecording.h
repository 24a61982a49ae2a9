#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "platform/AudioLibrary.h"
#include "platform/CaptureFile.h"
#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Shell.h"

namespace kestrune::presenters {

/// Five seconds of an input in a file of their own, in a temporary folder, which the desktop's player then plays. No part of
/// the run knows of it: not the log, the record or the folder of recordings. There is one such file at most.
class TestRecording {
 public:
  static constexpr int kSeconds = 5;

  struct Outside {
    platform::AudioLibrary& Audio;
    platform::Files& Files;
    const platform::Environment& Environment;
    platform::Shell& Shell;
  };

  /// All must outlive the object.
  explicit TestRecording(const Outside& outside) : outside_(outside) {}
  ~TestRecording() { Clear(); }
  TestRecording(const TestRecording&) = delete;
  TestRecording& operator=(const TestRecording&) = delete;

  /// Begins another one in that format; the extension comes without a dot. Message says what is in the way, if anything is.
  void Begin(const platform::CaptureFormat& format, std::string_view extension);
  /// Takes what comes next, interleaved, in the format of the samples that the file wants. The last of it that is needed
  /// plays the file.
  void Take(std::span<const std::int16_t> samples);
  /// Ends it without a file, and says why.
  void GiveUp(std::string why);
  /// Removes the file, which nobody can hear any more, and forgets what was said.
  void Clear();

  [[nodiscard]] bool Running() const { return file_ != nullptr; }
  /// Of the samples that the file wants; while it runs.
  [[nodiscard]] platform::PcmFormat Format() const { return file_->FormatValues(); }
  /// How much of it is done, 0 to 1.
  [[nodiscard]] double Part() const;
  /// What is going on, or what became of the last one; one line.
  [[nodiscard]] std::string Message() const;

 private:
  void Finish();
  void Remove();

  Outside outside_;
  std::unique_ptr<platform::CaptureFile> file_;  // while it runs
  std::string folder_;
  std::string path_;
  std::size_t samplesWanted_ = 0;
  std::size_t samplesTaken_ = 0;
  std::string message_;
};

}  // namespace kestrune::presenters
