#include "radio/line/TuningKeeper.h"

#include <fmt/format.h>

#include "radio/line/Commands.h"
#include "radio/line/HexText.h"

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

// Counted in beats: a program that was held up has not read yet what came meanwhile.
constexpr int kAwaitFor = 3s / TuningKeeper::kBeat;
constexpr int kRepeatsInDoubt = 3;

}  // namespace

void TuningKeeper::Begin(bool muteOwed) {
  wrong_ = false;
  repeats_ = 0;
  doubt_.clear();
  muteOwed_ = muteOwed;
  muteSent_ = false;
  mutePace_.Begin(loop_.SteadyNow());
}

void TuningKeeper::MayHaveLostPower(const LinkOrders& orders) {
  const LineTraffic& traffic = session_.Traffic();
  const bool usersOwn = traffic.Tuning() == Tuning::ByUser && traffic.Channel() != orders.Channel;
  if (usersOwn && !orders.InEvent) return;
  session_.DoubtTuning();
  if (muteOwed_) return;
  muteOwed_ = true;
  muteSent_ = false;
  mutePace_.Begin(loop_.SteadyNow());
}

TuningKeeper::Channel TuningKeeper::Judge(const LinkOrders& orders) {
  const LineTraffic& traffic = session_.Traffic();
  const bool elsewhere = traffic.Channel() != orders.Channel;
  switch (traffic.Tuning()) {
    case Tuning::NeverAsked:
      return Channel::Right;
    case Tuning::Asked:
      if (traffic.Selects() != select_) awaitedFor_ = 0;
      select_ = traffic.Selects();
      return ++awaitedFor_ > kAwaitFor ? Channel::Wrong : Channel::Awaited;
    case Tuning::Confirmed:
      return elsewhere ? Channel::Wrong : Channel::Right;
    case Tuning::ByUser:
      return elsewhere && orders.InEvent ? Channel::Wrong : Channel::Right;
    case Tuning::Refused:
    case Tuning::Doubtful:
      break;
  }
  return Channel::Wrong;
}

void TuningKeeper::Keep(const LinkOrders& orders) {
  const auto now = loop_.SteadyNow();
  const Channel channel = orders.Channel == 0 ? Channel::Right : Judge(orders);
  if (channel == Channel::Right || orders.Channel != wanted_) {
    wrong_ = false;
    doubt_.clear();
  }
  wanted_ = orders.Channel;
  if (channel == Channel::Wrong) {
    if (!wrong_) {
      wrong_ = true;
      repeats_ = 0;
      pace_.Begin(now);
    }
    if (pace_.Due(now)) RepeatSelect(orders.Channel);
  }
  if (muteOwed_ && muteSent_ && session_.Traffic().Count(ReplyType::Mute) != muteReplies_) muteOwed_ = false;
  if (muteOwed_ && mutePace_.Due(now)) RepeatMute(orders.Muted);
}

void TuningKeeper::RepeatSelect(std::int16_t channel) {
  pace_.Tried(loop_.SteadyNow());
  if (repeats_ == kRepeatsInDoubt) {
    doubt_ = session_.Traffic().Tuning() == Tuning::Refused
                 ? fmt::format("the radio refuses channel {}", channel)
                 : fmt::format("the radio does not confirm channel {}", channel);
  } else {
    ++repeats_;
  }
  session_.pcrSendBinary(pcrHexToBinary(command::SelectChannel(channel)));
}

void TuningKeeper::RepeatMute(bool muted) {
  mutePace_.Tried(loop_.SteadyNow());
  muteSent_ = true;
  muteReplies_ = session_.Traffic().Count(ReplyType::Mute);
  session_.pcrSendBinary(pcrHexToBinary(muted ? command::kMuteOn : command::kMuteOff));
}

}  // namespace kestrune::radio
