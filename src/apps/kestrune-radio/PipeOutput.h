#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "apps/kestrune-radio/SoundOutput.h"
#include "platform/posix/FileDescriptor.h"

namespace kestrune::radio_program {

/// Raw samples into a named pipe, or into a file that exists already. A pipe is made if nothing is there, and
/// then removed at the end. Readers may come and go; each gets the sound from its coming on.
class PipeOutput final : public SoundOutput {
 public:
  PipeOutput(std::string path, int sampleRate);
  ~PipeOutput() override;
  PipeOutput(const PipeOutput&) = delete;
  PipeOutput& operator=(const PipeOutput&) = delete;

  /// Empty unless the path can be used for neither.
  [[nodiscard]] const std::string& Error() const { return error_; }

  void Play(std::span<const std::int16_t> interleaved) override;
  [[nodiscard]] bool Heard() const override { return file_.IsOpen(); }
  [[nodiscard]] std::int64_t LostFrames() const override { return lostFrames_; }

 private:
  void WriteOut();

  std::string path_;
  std::string error_;
  platform::FileDescriptor file_;
  std::vector<char> waiting_;
  std::size_t longestWait_;  ///< bytes
  std::int64_t lostFrames_ = 0;
  bool made_ = false;
};

}  // namespace kestrune::radio_program
