#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "receiver/SongSignal.h"
#include "receiver/VirtualReceiver.h"

namespace kestrune::radio_program {

enum class SoundTarget { None, Pipe, Pulse };

/// What the command line asks for.
struct RadioOptions {
  bool Help = false;
  bool Version = false;
  std::string Link;
  SoundTarget Sound = SoundTarget::None;
  std::string SoundPlace;  ///< the pipe's path or the sink's name
  int SampleRate = 44100;
  receiver::SignalKind Signal = receiver::SignalKind::Tunes;
  std::optional<std::chrono::milliseconds> SongLength;
  std::string LineUpFile;
  int Channels = 0;  ///< 0: the built-in line-up, or the file's
  std::string ReplayFile;
  std::string JsonFile;
  std::optional<std::chrono::milliseconds> Duration;
  receiver::ReceiverOptions Receiver;
};

struct ParsedOptions {
  RadioOptions Options;
  std::string Error;  ///< empty on success, else one line that names the wrong option
};

[[nodiscard]] ParsedOptions ParseRadioOptions(const std::vector<std::string_view>& arguments);

[[nodiscard]] std::string RadioUsage();

}  // namespace kestrune::radio_program
