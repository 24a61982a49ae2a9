#include "radio/line/RadioLink.h"

#include <optional>
#include <utility>

#include <fmt/format.h>

#include "base/Ignored.h"

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

constexpr auto kBeat = TuningKeeper::kBeat;
// A beat that comes due within another's wait is made up for this soon after it.
constexpr auto kAfterWait = 20ms;
constexpr int kRosterBeats = 10s / kBeat;
constexpr int kUnanswered = 10;
// The longest frame takes a tenth of a second.
constexpr int kDeaf = 3;
constexpr int kPartialBeats = 1s / kBeat;
constexpr int kOffRefusals = 3;

constexpr std::string_view kGone = "the device is gone";
constexpr std::string_view kNoAnswer = "it does not answer";
constexpr std::string_view kOff = "it is switched off";
constexpr std::string_view kNoRadio = "the device is there again, but no radio answers";

std::string_view NameOf(Remedy remedy) {
  switch (remedy) {
    case Remedy::Ask:
      return "ask";
    case Remedy::PowerOn:
      return "power on";
    case Remedy::Reopen:
      break;
  }
  return "open";
}

}  // namespace

RadioLink::RadioLink(platform::SerialPort& port, base::EventLoop& loop, const base::RunState& run,
                     base::Journal& journal)
    : loop_(loop),
      run_(run),
      journal_(journal),
      session_(port, loop, run, journal),
      start_(session_, loop, run, journal),
      tmrLink_(loop.MakeTimer(kBeat, [this] { Beat(); })),
      jump_(loop),
      roster_([this](std::int16_t number) { return session_.PortExists(number); }),
      keeper_(session_, loop),
      bringUp_(session_, loop) {}

void RadioLink::SetChannelInfoHandler(std::function<void(const ChannelInfo& info)> handler) {
  session_.pcrChannelInfoReceived = std::move(handler);
}

void RadioLink::SetSignalHandler(
    std::function<void(std::int16_t satellite1, std::int16_t satellite2, std::int16_t terrestrial)> handler) {
  session_.pcrSignalReceived = std::move(handler);
}

// The end.

void RadioLink::SwitchOff() {
  if (!status_.Up()) return;
  base::Ignored(session_.pcrMute(true));
  base::Ignored(session_.pcrPowerOff());
}

void RadioLink::Close() {
  if (!session_.pcrPortOpen()) return;
  session_.DrainInput();
  session_.SetPortOpen(false);
}

// The watch.

void RadioLink::StartWatch(LinkOwner& owner) {
  owner_ = &owner;
  status_ = {.Port = session_.pcrCOMPort()};
  identifier_ = session_.Replies().pcrRadioID;
  roster_.Remember(status_.Port);
  gaps_ = session_.Traffic().Gaps();
  keeper_.Begin(false);
  base::Ignored(jump_.Seen());
  tmrLink_->SetEnabled(true);
}

void RadioLink::StopWatch() {
  tmrLink_->SetEnabled(false);
  LeaveTrial();
}

base::Result RadioLink::Ready() const {
  if (status_.Up()) return base::Result::Done();
  return base::Result::Failed("the radio is lost: " + status_.Cause);
}

void RadioLink::Beat() {
  if (run_.ShuttingDown) return StopWatch();
  if (loop_.Pumping()) return tmrLink_->SetInterval(kAfterWait);
  const LinkOrders orders = owner_->Orders();
  const bool jumped = jump_.Seen();
  // Whatever sleeps may find its devices numbered anew.
  if (jumped) roster_.SuspectAll();
  if (!orders.Watch) {
    Rest();
  } else if (status_.Up()) {
    if (jumped) keeper_.MayHaveLostPower(orders);
    Guard(orders);
  } else {
    if (jumped) pace_.Begin(loop_.SteadyNow());
    Repair(orders);
  }
  tmrLink_->SetInterval(bringUp_.Running() ? QuietBringUp::kStep : kBeat);
}

// Without the watch.

void RadioLink::Rest() {
  LeaveTrial();
  gaps_ = session_.Traffic().Gaps();
  if (!status_.Up()) Change(LinkState::Up, "");
  SetDoubt("");
}

void RadioLink::LeaveTrial() {
  bringUp_.GiveUp();
  if (!session_.OnTrial()) return;
  session_.SetPortOpen(false);
  session_.SetOnTrial(false);
}

// While the link is up.

void RadioLink::Guard(const LinkOrders& orders) {
  const LineTraffic& traffic = session_.Traffic();
  if (!session_.pcrPortOpen()) return Fail(LinkState::Lost, kGone, loop_.SteadyNow());
  if (traffic.OffRefusals() >= kOffRefusals) return Fail(LinkState::Off, kOff, traffic.LastReply());
  if (traffic.Unanswered() >= kUnanswered) return Fail(LinkState::Silent, kNoAnswer, traffic.LastReply());
  if (std::exchange(gaps_, traffic.Gaps()) != traffic.Gaps()) keeper_.MayHaveLostPower(orders);
  DropStaleFrame();
  keeper_.Keep(orders);
  SetDoubt(keeper_.Doubt());
  if (++beats_ < kRosterBeats) return;
  beats_ = 0;
  roster_.Remember(status_.Port);
}

void RadioLink::DropStaleFrame() {
  const bool stale = session_.Traffic().Unanswered() >= kDeaf && session_.HasPartialFrame();
  partialBeats_ = stale ? partialBeats_ + 1 : 0;
  if (partialBeats_ < kPartialBeats) return;
  session_.DropPartialFrame();
  partialBeats_ = 0;
}

void RadioLink::Fail(LinkState state, std::string_view cause, Milliseconds since) {
  const auto now = loop_.SteadyNow();
  lostAt_ = since;
  pace_.Begin(now);
  remedies_ = 0;
  lastRemedy_ = now;
  lastEarly_ = now - RemedyPace::kSlow;
  stranger_.clear();
  status_ = {.State = state,
             .Cause = std::string(cause),
             .Port = session_.pcrCOMPort(),
             .Since = loop_.Now().AddSeconds(-std::chrono::floor<std::chrono::seconds>(now - since).count())};
  owner_->RadioLost(status_);
  owner_->LinkChanged(status_);
}

// While it is not.

void RadioLink::Repair(const LinkOrders& orders) {
  if (bringUp_.Running()) {
    const std::optional<BringUpOutcome> outcome = bringUp_.Step();
    if (!outcome) return;
    if (outcome->Came == BringUpOutcome::Kind::Up) return Return(orders, outcome->MuteAnswered);
    return TakeFailure(*outcome);
  }
  if (status_.State == LinkState::Lost) {
    roster_.Look();
  } else if (!session_.pcrPortOpen()) {
    Change(LinkState::Lost, kGone);
  } else if (status_.State == LinkState::Silent && session_.Traffic().OffRefusals() > 0) {
    Change(LinkState::Off, kOff);
  }
  const auto now = loop_.SteadyNow();
  if (pace_.Due(now)) {
    pace_.Tried(now);
    BeginRemedy(NextRemedy(), orders);
  } else if (AnswersAgain() && now - lastRemedy_ >= RemedyPace::kFast &&
             now - lastEarly_ >= RemedyPace::kSlow) {
    lastEarly_ = now;
    BeginRemedy(Remedy::Ask, orders);
  }
}

bool RadioLink::AnswersAgain() const {
  return status_.State != LinkState::Lost && session_.Traffic().LastReply() > lastRemedy_;
}

Remedy RadioLink::NextRemedy() const {
  if (status_.State == LinkState::Lost) return Remedy::Reopen;
  if (AnswersAgain()) return Remedy::Ask;
  if (status_.State == LinkState::Silent && remedies_ == 0) return Remedy::Ask;
  return remedies_ % 2 == 0 && remedies_ > 1 ? Remedy::Reopen : Remedy::PowerOn;
}

void RadioLink::BeginRemedy(Remedy remedy, const LinkOrders& orders) {
  ++remedies_;
  lastRemedy_ = loop_.SteadyNow();
  std::int16_t port = session_.pcrCOMPort();
  if (remedy == Remedy::Reopen && status_.State == LinkState::Lost) {
    port = identifier_.empty() && session_.PortExists(status_.Port) ? status_.Port : roster_.Next();
    if (port == 0 || (identifier_.empty() && port != status_.Port)) return;
  } else {
    session_.DropPartialFrame();
  }
  journal_.DebugPrint(fmt::format("Remedy {} on port {}: {}", remedies_, port, NameOf(remedy)));
  mutedByRemedy_ = orders.Muted;
  bringUp_.Begin({.How = remedy,
                  .Port = port,
                  .Identifier = identifier_,
                  .Channel = orders.Channel,
                  .Muted = orders.Muted});
}

void RadioLink::TakeFailure(const BringUpOutcome& outcome) {
  const bool lost = status_.State == LinkState::Lost;
  switch (outcome.Came) {
    case BringUpOutcome::Kind::OtherRadio:
      session_.SetOnTrial(true);
      LeaveTrial();
      // A byte that went wrong looks like another radio once.
      if (stranger_ == session_.Traffic().Identifier()) roster_.SuspectAll();
      stranger_ = session_.Traffic().Identifier();
      return Change(LinkState::Lost, outcome.Cause);
    case BringUpOutcome::Kind::NotOpened:
      LeaveTrial();
      return Change(LinkState::Lost, outcome.Cause);
    case BringUpOutcome::Kind::NoAnswer:
      // The number of a device that is away must stay free for it. A line that never hung up stays open: over it
      // the radio answers as soon as it can.
      if (lost) {
        LeaveTrial();
        return Change(LinkState::Lost, kNoRadio);
      }
      session_.SetOnTrial(false);
      return Change(LinkState::Silent, kNoAnswer);
    case BringUpOutcome::Kind::Off:
      return Change(LinkState::Off, kOff);
    case BringUpOutcome::Kind::Up:
      break;
  }
}

void RadioLink::Return(const LinkOrders& orders, bool muteAnswered) {
  const LineTraffic& traffic = session_.Traffic();
  status_ = {.Port = session_.pcrCOMPort()};
  if (identifier_.empty()) identifier_ = traffic.Identifier();
  roster_.Remember(status_.Port);
  beats_ = 0;
  gaps_ = traffic.Gaps();
  keeper_.Begin(!muteAnswered || mutedByRemedy_ != orders.Muted);
  base::Ignored(session_.pcrGetSignalLevels());
  owner_->RadioFound(status_, loop_.SteadyNow() - lostAt_);
  owner_->LinkChanged(status_);
}

// What is reported.

void RadioLink::Change(LinkState state, std::string_view cause) {
  if (status_.State == state && status_.Cause == cause) return;
  status_.State = state;
  status_.Cause = cause;
  owner_->LinkChanged(status_);
}

void RadioLink::SetDoubt(const std::string& doubt) {
  if (status_.Doubt == doubt) return;
  status_.Doubt = doubt;
  owner_->LinkChanged(status_);
}

}  // namespace kestrune::radio
