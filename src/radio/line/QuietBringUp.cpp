#include "radio/line/QuietBringUp.h"

#include <utility>

#include <fmt/format.h>

#include "radio/line/BringUp.h"
#include "radio/line/Commands.h"
#include "radio/line/HexText.h"

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

// The waits of the operations in RadioSession.
constexpr auto kPowerReply = 4800ms;
constexpr auto kReply = 1500ms;
constexpr auto kOpening = 10s;

}  // namespace

QuietBringUp::QuietBringUp(RadioSession& session, base::EventLoop& loop) : session_(session), loop_(loop) {}

void QuietBringUp::Begin(BringUpPlan plan) {
  plan_ = std::move(plan);
  step_ = 0;
  wasOff_ = false;
  switch (plan_.How) {
    case Remedy::Ask:
      return Go(&QuietBringUp::AskIdentifier);
    case Remedy::PowerOn:
      return Go(&QuietBringUp::BeforePowerOn);
    case Remedy::Reopen:
      break;
  }
  session_.SetOnTrial(true);
  opened_ = std::make_shared<std::optional<PortTrial>>();
  session_.OpenLater(plan_.Port, [opened = opened_](PortTrial trial) { *opened = std::move(trial); });
  Go(&QuietBringUp::AwaitOpening);
}

QuietBringUp::Outcome QuietBringUp::Step() {
  if (next_ == nullptr || loop_.SteadyNow() < due_) return std::nullopt;
  Outcome outcome = (this->*next_)();
  if (outcome) next_ = nullptr;
  return outcome;
}

void QuietBringUp::GiveUp() {
  next_ = nullptr;
  opened_.reset();
}

void QuietBringUp::Go(NextStep next, Milliseconds pause) {
  next_ = next;
  began_ = loop_.SteadyNow();
  due_ = began_ + pause;
}

void QuietBringUp::Send(std::string_view hexText) {
  session_.pcrSendBinary(pcrHexToBinary(hexText));
}

bool QuietBringUp::TimeIsUp(Milliseconds limit) const {
  return loop_.SteadyNow() - began_ >= limit;
}

bool QuietBringUp::Replied(ReplyType type) const {
  return session_.Traffic().Count(type) != replies_;
}

QuietBringUp::Outcome QuietBringUp::Fail(BringUpOutcome::Kind kind, std::string cause) {
  return BringUpOutcome{.Came = kind, .Cause = std::move(cause), .MuteAnswered = false};
}

// The line.

QuietBringUp::Outcome QuietBringUp::AwaitOpening() {
  if (!*opened_) {
    if (!TimeIsUp(kOpening)) return std::nullopt;
    return Fail(BringUpOutcome::Kind::NotOpened, "the device does not let itself be opened");
  }
  const PortTrial trial = **opened_;
  opened_.reset();
  if (trial.Why == PortTrial::Reason::NoAnswer) {
    Go(&QuietBringUp::AfterOpening, BringUp::kAfterOpening);
    return std::nullopt;
  }
  const bool gone = trial.Why == PortTrial::Reason::NoDevice;
  return Fail(BringUpOutcome::Kind::NotOpened, gone ? "the device is gone" : trial.Cause);
}

QuietBringUp::Outcome QuietBringUp::AfterOpening() {
  session_.DropPartialFrame();
  return AskIdentifier();
}

// Power.

QuietBringUp::Outcome QuietBringUp::BeforePowerOn() {
  if (step_ < command::kBeforePowerOn.size()) {
    const command::Step& step = command::kBeforePowerOn.at(step_++);
    Send(step.Frame);
    Go(&QuietBringUp::BeforePowerOn, step.Pause);
    return std::nullopt;
  }
  replies_ = session_.Traffic().Count(ReplyType::PowerOn);
  Send(command::kPowerOn);
  Go(&QuietBringUp::AwaitPowerOn);
  return std::nullopt;
}

QuietBringUp::Outcome QuietBringUp::AwaitPowerOn() {
  step_ = 0;
  if (Replied(ReplyType::PowerOn)) return CheckIdentifier(&QuietBringUp::AfterPowerOn);
  if (!session_.pcrPortOpen()) return Fail(BringUpOutcome::Kind::NotOpened, "the device is gone");
  if (!TimeIsUp(kPowerReply)) return std::nullopt;
  return Fail(BringUpOutcome::Kind::NoAnswer, "it does not answer");
}

QuietBringUp::Outcome QuietBringUp::AfterPowerOn() {
  if (step_ == command::kAfterPowerOn.size()) return Tune();
  const command::Step& step = command::kAfterPowerOn.at(step_++);
  Send(step.Frame);
  Go(&QuietBringUp::AfterPowerOn, step.Pause);
  return std::nullopt;
}

// The identifier.

QuietBringUp::Outcome QuietBringUp::AskIdentifier() {
  replies_ = session_.Traffic().Count(ReplyType::RadioID);
  refusals_ = session_.Traffic().Count(ReplyType::PowerIsOff);
  Send(command::kRadioID);
  Go(&QuietBringUp::AwaitIdentifier);
  return std::nullopt;
}

QuietBringUp::Outcome QuietBringUp::AwaitIdentifier() {
  const bool opened = plan_.How == Remedy::Reopen;
  if (Replied(ReplyType::RadioID)) {
    return CheckIdentifier(opened ? &QuietBringUp::BeforePowerOn : &QuietBringUp::Tune);
  }
  if (!session_.pcrPortOpen()) return Fail(BringUpOutcome::Kind::NotOpened, "the device is gone");
  wasOff_ = session_.Traffic().Count(ReplyType::PowerIsOff) != refusals_;
  if (!wasOff_ && !TimeIsUp(kReply)) return std::nullopt;
  if (opened) return BeforePowerOn();
  if (wasOff_) return Fail(BringUpOutcome::Kind::Off, "it is switched off");
  return Fail(BringUpOutcome::Kind::NoAnswer, "it does not answer");
}

QuietBringUp::Outcome QuietBringUp::CheckIdentifier(NextStep next) {
  if (!plan_.Identifier.empty() && session_.Traffic().Identifier() != plan_.Identifier) {
    if (wasOff_) Send(command::kPowerOff);
    return Fail(BringUpOutcome::Kind::OtherRadio,
                fmt::format("another radio answers on port {}", session_.pcrCOMPort()));
  }
  return (this->*next)();
}

// What the radio is to be at.

QuietBringUp::Outcome QuietBringUp::Tune() {
  session_.DoubtTuning();
  if (plan_.Channel != 0) Send(command::SelectChannel(plan_.Channel));
  Go(&QuietBringUp::AwaitTuning);
  return std::nullopt;
}

QuietBringUp::Outcome QuietBringUp::AwaitTuning() {
  const bool awaited = session_.Traffic().Tuning() == Tuning::Asked;
  if (awaited && !TimeIsUp(kReply)) return std::nullopt;
  replies_ = session_.Traffic().Count(ReplyType::Mute);
  Send(plan_.Muted ? command::kMuteOn : command::kMuteOff);
  Go(&QuietBringUp::AwaitMute);
  return std::nullopt;
}

QuietBringUp::Outcome QuietBringUp::AwaitMute() {
  if (!Replied(ReplyType::Mute) && !TimeIsUp(kReply)) return std::nullopt;
  if (!session_.pcrPortOpen()) return Fail(BringUpOutcome::Kind::NotOpened, "the device is gone");
  session_.SetOnTrial(false);
  return BringUpOutcome{.MuteAnswered = Replied(ReplyType::Mute)};
}

}  // namespace kestrune::radio
