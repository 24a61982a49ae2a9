#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <pulse/pulseaudio.h>

#include "apps/kestrune-radio/SoundOutput.h"

namespace kestrune::radio_program {

/// Sound into a sink of the sound server. A server that goes away is sought again every second.
class PulseOutput final : public SoundOutput {
 public:
  /// An empty sink is the server's default.
  PulseOutput(std::string sink, int sampleRate);
  ~PulseOutput() override;
  PulseOutput(const PulseOutput&) = delete;
  PulseOutput& operator=(const PulseOutput&) = delete;

  void Play(std::span<const std::int16_t> interleaved) override;
  [[nodiscard]] bool Heard() const override;
  [[nodiscard]] std::int64_t LostFrames() const override { return lostFrames_; }
  [[nodiscard]] int Gaps() const override { return gaps_; }

 private:
  struct Deleter {
    void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    void operator()(pa_context* context) const;
    void operator()(pa_stream* stream) const;
  };

  void Connect();
  void Disconnect();
  void OpenStream();
  [[nodiscard]] bool Failed() const;

  std::string sink_;
  int sampleRate_;
  // In this order: a stream lives in a context, a context on a loop.
  std::unique_ptr<pa_mainloop, Deleter> loop_;
  std::unique_ptr<pa_context, Deleter> context_;
  std::unique_ptr<pa_stream, Deleter> stream_;
  std::chrono::steady_clock::time_point nextTry_;
  std::int64_t lostFrames_ = 0;
  int gaps_ = 0;
  bool overflown_ = false;
};

}  // namespace kestrune::radio_program
