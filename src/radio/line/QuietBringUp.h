#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "base/EventLoop.h"
#include "radio/line/PortTrial.h"
#include "radio/line/RadioSession.h"

namespace kestrune::radio {

/// How far a bring-up without waits is to go back.
enum class Remedy {
  Ask,      ///< ask the radio on the open line who it is
  PowerOn,  ///< power it on first
  Reopen,   ///< close and open the line before that
};

/// What brings the radio up again and leaves it as it should be.
struct BringUpPlan {
  Remedy How = Remedy::Ask;
  std::int16_t Port = 0;  ///< to open, 1 to 16; unused otherwise
  /// The identifier that the radio must report; if it is empty, any will do.
  std::string Identifier = {};
  std::int16_t Channel = 0;  ///< 0: none is selected
  bool Muted = false;
};

/// How an attempt went.
struct BringUpOutcome {
  enum class Kind {
    Up,          ///< the radio has been reached; Channel and Muted have been sent
    NotOpened,   ///< there is no device, or it cannot be opened
    NoAnswer,    ///< nothing answers on the line
    Off,         ///< the radio answers that it is switched off
    OtherRadio,  ///< a radio with another identifier answers
  };
  Kind Came = Kind::Up;
  std::string Cause = {};     ///< as base::Result has it
  bool MuteAnswered = false;  ///< the reply to Muted has come; for Channel, see Traffic
};

/// The bring-up that blocks nobody: the steps of BringUp, each of which sends at most one frame and returns. One
/// attempt at a time.
///
/// Behind a port that it opens it asks for the identifier before it powers anything on; another radio that was switched
/// off and had to be powered on to report its identifier is switched off again. Such a port is on trial until the
/// attempt ends well; after a failure the caller closes it, or takes it off trial.
class QuietBringUp {
 public:
  using Milliseconds = std::chrono::milliseconds;

  /// How often Step is to be called while an attempt runs.
  static constexpr Milliseconds kStep{100};

  /// Both must outlive this object.
  QuietBringUp(RadioSession& session, base::EventLoop& loop);

  /// Takes the first step of an attempt; none may be running.
  void Begin(BringUpPlan plan);
  /// Takes the next step, if it is due. The outcome when the attempt has ended.
  [[nodiscard]] std::optional<BringUpOutcome> Step();
  [[nodiscard]] bool Running() const { return next_ != nullptr; }
  /// Gives the attempt up where it stands. An opening under way is left to end in a port on trial, unless the
  /// port is closed.
  void GiveUp();

 private:
  using Outcome = std::optional<BringUpOutcome>;
  using NextStep = Outcome (QuietBringUp::*)();

  void Go(NextStep next, Milliseconds pause = Milliseconds(0));
  void Send(std::string_view hexText);
  [[nodiscard]] bool TimeIsUp(Milliseconds limit) const;
  [[nodiscard]] bool Replied(ReplyType type) const;
  [[nodiscard]] Outcome Fail(BringUpOutcome::Kind kind, std::string cause);

  Outcome AwaitOpening();
  Outcome AfterOpening();
  Outcome BeforePowerOn();
  Outcome AwaitPowerOn();
  Outcome AskIdentifier();
  Outcome AwaitIdentifier();
  Outcome CheckIdentifier(NextStep next);
  Outcome AfterPowerOn();
  Outcome Tune();
  Outcome AwaitTuning();
  Outcome AwaitMute();

  RadioSession& session_;
  base::EventLoop& loop_;
  BringUpPlan plan_;
  NextStep next_ = nullptr;  // null: no attempt runs
  Milliseconds due_{0};      // when the next step is
  Milliseconds began_{0};    // when the step in hand did
  std::size_t step_ = 0;     // within a sequence
  std::uint32_t replies_ = 0;
  std::uint32_t refusals_ = 0;
  bool wasOff_ = false;  // before it was asked to power on, and said so
  std::shared_ptr<std::optional<PortTrial>> opened_;
};

}  // namespace kestrune::radio
