#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "receiver/LineUp.h"

namespace kestrune::receiver {

/// Raw signal values as the radio sends them.
struct SignalLevels {
  std::uint8_t Satellite1 = 54;     ///< 6 or less is no signal, 70 is full
  std::uint8_t Satellite2 = 46;     ///< the same
  std::uint16_t Terrestrial = 136;  ///< 0 is full, 680 is no signal
};

/// The receiver itself: its state, and its answer to each command. The caller passes the time, in milliseconds
/// since the receiver's start.
class ReceiverModel {
 public:
  struct Setup {
    std::string Identifier = "KSTR2605";  ///< eight characters; I and O are not used
    bool PoweredOn = true;
    int Tuned = 0;                        ///< 0: the first station
    std::chrono::milliseconds Lead{600};  ///< how far the text runs ahead of the sound
    SignalLevels Levels = {};
  };

  ReceiverModel(LineUp lineUp, Setup setup);

  /// The frames that answer a command's payload: none or one. Every byte counts: a select with a wrong field is
  /// refused, and any other command that FaultOfPayload finds wrong is neither obeyed nor answered.
  [[nodiscard]] std::vector<std::string> Answer(std::chrono::milliseconds now, std::string_view command);

  [[nodiscard]] const LineUp& Stations() const { return lineUp_; }
  [[nodiscard]] bool PoweredOn() const { return poweredOn_; }
  [[nodiscard]] bool Muted() const { return muted_; }
  [[nodiscard]] int TunedChannel() const { return tuned_; }
  /// The tuned channel, or 0 while nothing is audible.
  [[nodiscard]] int AudibleChannel() const { return poweredOn_ && !muted_ ? tuned_ : 0; }
  [[nodiscard]] std::chrono::milliseconds Lead() const { return setup_.Lead; }

  void SetPower(bool on) { poweredOn_ = on; }
  void SetMuted(bool on) { muted_ = on; }
  void SetTunedChannel(int number) { tuned_ = number; }
  /// Eight characters.
  void SetIdentifier(std::string identifier) { setup_.Identifier = std::move(identifier); }
  void SetLevels(SignalLevels levels) { setup_.Levels = levels; }
  /// The next select is refused, and the channel stays.
  void RefuseNextSelect() { refuseNextSelect_ = true; }

 private:
  [[nodiscard]] std::string PowerOn();
  [[nodiscard]] std::string PowerOff();
  [[nodiscard]] std::string Select(std::string_view command);
  [[nodiscard]] std::string Mute(std::string_view command);
  [[nodiscard]] std::string ChannelInfo(std::chrono::milliseconds now, std::string_view command) const;
  [[nodiscard]] std::string Identifier() const;
  [[nodiscard]] std::string Signal() const;

  LineUp lineUp_;
  Setup setup_;
  bool poweredOn_;
  bool muted_ = false;
  bool refuseNextSelect_ = false;
  int tuned_;
};

/// A whole frame around a payload. Its trailer follows the rule of the commands: 01, then the low byte of the
/// sum of the payload and its length less one.
[[nodiscard]] std::string FrameOf(std::string_view payload);

}  // namespace kestrune::receiver
