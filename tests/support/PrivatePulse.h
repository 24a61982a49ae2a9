#pragma once

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "support/ChildProcess.h"

namespace kestrune::test {

/// A PulseAudio server of a test's own: its files are in a temporary folder, it uses no hardware, and no
/// other server of the machine is touched. It has a null sink named "radio", 44100 Hz in stereo, whose
/// monitor "radio.monitor" delivers bit for bit what is played into it.
class PrivatePulse {
 public:
  static constexpr const char* kSink = "radio";
  static constexpr const char* kMonitor = "radio.monitor";
  /// Frames of silence to put before a sound that has to be heard from its first sample: what is played into
  /// a sink that was idle takes the place of silence that the monitor has given out already.
  static constexpr std::uint32_t kLeadIn = 22050;

  /// Further modules to load, each a line such as "module-null-sink sink_name=other".
  explicit PrivatePulse(std::vector<std::string> modules = {});
  ~PrivatePulse();
  PrivatePulse(const PrivatePulse&) = delete;
  PrivatePulse& operator=(const PrivatePulse&) = delete;

  [[nodiscard]] static bool Installed();

  /// Starts it and waits until it answers; false if it does not.
  [[nodiscard]] bool Start();
  /// Ends it at once, as a crash would.
  void Kill();
  /// A halted server holds its connections and answers nothing, until Continue.
  void Halt() { server_.Signal(SIGSTOP); }
  void Continue() { server_.Signal(SIGCONT); }
  /// Kill and Start; what played into it has to be played anew.
  [[nodiscard]] bool Restart();

  /// The value of PULSE_SERVER that leads to it.
  [[nodiscard]] std::string Server() const { return "unix:" + Socket().string(); }
  /// PULSE_SERVER and the home and runtime folders for a program that is to meet this server and no other.
  [[nodiscard]] ChildProcess::Variables Environment() const;
  [[nodiscard]] const std::filesystem::path& Folder() const { return folder_; }

  /// Plays a file of raw samples (16-bit, 44100 Hz, stereo) into the sink, once.
  [[nodiscard]] ChildProcess Play(const std::filesystem::path& rawFile,
                                  const std::string& sink = kSink) const;
  /// Runs pactl with the words; true if it could.
  bool Control(const std::vector<std::string>& words) const;

 private:
  [[nodiscard]] std::filesystem::path Socket() const { return folder_ / "native"; }

  std::filesystem::path folder_;
  std::vector<std::string> modules_;
  ChildProcess server_;
};

/// Writes stereo frames that hold their numbers, low half left, high half right, from 1 on (a zero is
/// silence), with so many frames of silence before them.
void WriteNumberedFrames(const std::filesystem::path& file, std::uint32_t count, std::uint32_t first = 1,
                         std::uint32_t leadIn = 0);

}  // namespace kestrune::test
