#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "receiver/CommandReader.h"
#include "receiver/JsonLines.h"
#include "receiver/LinePacer.h"
#include "receiver/LineUp.h"
#include "receiver/Misbehaviour.h"
#include "receiver/ReceiverModel.h"
#include "receiver/StationSound.h"
#include "receiver/Timeline.h"
#include "receiver/TraceReplay.h"

namespace kestrune::receiver {

struct ReceiverOptions {
  ReceiverModel::Setup Model;
  std::chrono::milliseconds ReplyDelay{20};  ///< from a command's last byte to the answer's first bit
  int Baud = 9600;
  std::vector<MisbehaviourWish> Misbehaviours;  ///< unknown names are ignored
  std::uint64_t Seed = 1;
};

/// The whole receiver at its end of the wire: it takes commands and gives paced bytes and sound. It reads no clock:
/// the caller passes the time since the receiver's start with each call, and that time never goes back.
class VirtualReceiver {
 public:
  using Milliseconds = std::chrono::milliseconds;
  using Microseconds = std::chrono::microseconds;

  /// `log` may be null.
  VirtualReceiver(LineUp lineUp, const ReceiverOptions& options, JsonLines* log = nullptr);
  VirtualReceiver(const VirtualReceiver&) = delete;
  VirtualReceiver& operator=(const VirtualReceiver&) = delete;

  /// From now on the receiver answers nothing and plays the trace, which starts with the first byte it
  /// receives.
  void Replay(TraceReplay trace);

  /// Bytes from the program that have arrived by now.
  void Receive(Milliseconds now, std::string_view bytes);
  /// Bytes to the program that have been transmitted by now, each returned once.
  [[nodiscard]] std::string Send(Microseconds now);
  /// When Send will have something again; nothing if only a command can change that.
  [[nodiscard]] std::optional<Microseconds> NextByte() const;
  /// Takes the receiver's supply of power away: it hears and says nothing any more, and what is on its way to the
  /// program is lost.
  void CutPower(Milliseconds now);
  /// Gives it back. The receiver stands on this channel, not muted, switched on or off.
  void RestorePower(Milliseconds now, bool on, int channel);
  /// Drops what is still on its way to the program.
  void DropUnsent() { pacer_.Clear(); }

  /// Makes sound from this moment on. Frame n belongs to the moment n / sampleRate since the receiver's
  /// start.
  void StartSound(Milliseconds now, SignalKind kind, int sampleRate);
  /// Stereo frames of the audible sound up to this moment, each returned once. A change of channel, mute or power
  /// falls on the frame of its moment.
  [[nodiscard]] std::vector<std::int16_t> TakeSound(Milliseconds now);
  /// The number of frames returned so far, and the frame number of the first one.
  [[nodiscard]] std::int64_t FramesTaken() const { return framesTaken_; }
  [[nodiscard]] std::int64_t FirstFrame() const { return firstFrame_; }

  /// Logs the changes of text and sound on the tuned channel; without a log, does nothing.
  void Observe(Milliseconds now);

  [[nodiscard]] ReceiverModel& Model() { return model_; }
  [[nodiscard]] const LineUp& Stations() const { return model_.Stations(); }
  [[nodiscard]] const std::vector<std::unique_ptr<Misbehaviour>>& Misbehaviours() const {
    return misbehaviours_;
  }

 private:
  void Answer(Milliseconds now, const Command& command);
  [[nodiscard]] std::vector<Sending> AnswerOf(Milliseconds now, const std::string& payload);
  void RenderUntil(Milliseconds now);
  void LogState(Milliseconds now, bool powered, bool muted, int tuned);
  void LogSong(Milliseconds now, std::string_view event, const Playing& playing);

  ReceiverModel model_;
  ReceiverOptions options_;
  JsonLines* log_;
  std::vector<std::unique_ptr<Misbehaviour>> misbehaviours_;
  CommandReader reader_;
  LinePacer pacer_;
  std::optional<TraceReplay> replay_;
  std::optional<Milliseconds> replayStart_;
  std::optional<StationSound> sound_;
  std::vector<std::int16_t> rendered_;
  std::int64_t nextFrame_ = 0;
  std::int64_t firstFrame_ = 0;
  std::int64_t framesTaken_ = 0;
  bool supplied_ = true;
  int observedChannel_ = 0;
  std::optional<Milliseconds> observedText_;   ///< start of the song
  std::optional<Milliseconds> observedSound_;  ///< start of the song
};

}  // namespace kestrune::receiver
