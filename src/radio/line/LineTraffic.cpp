#include "radio/line/LineTraffic.h"

#include <algorithm>

namespace kestrune::radio {

namespace {

using namespace std::chrono_literals;

constexpr unsigned kSelect = 0x10;
constexpr unsigned kSetup = 0x74;
constexpr unsigned kSetupDone = 0x40;
// One lost reply costs two seconds and one request; it must not look like a gap.
constexpr int kGapRequests = 2;
constexpr auto kGap = 2500ms;
constexpr std::size_t kMostAsked = 8;

}  // namespace

void LineTraffic::Sent(std::string_view frame, Milliseconds now) {
  const unsigned type = ByteAt(frame, 4);
  if (type == kSetup || type == kSetupDone) return;
  if (unanswered_ == 0) firstUnanswered_ = now;
  ++unanswered_;
  if (type != kSelect) return;
  ++selects_;
  tuning_ = Tuning::Asked;
  if (asked_.size() == kMostAsked) asked_.pop_front();
  asked_.push_back(ByteAt(frame, 6));
}

void LineTraffic::Received(std::string_view frame, Milliseconds now) {
  if (!IsReply(frame)) return;
  const auto type = static_cast<ReplyType>(ByteAt(frame, 4));
  ++counts_.at(static_cast<std::size_t>(type));
  if (unanswered_ >= kGapRequests && now - firstUnanswered_ >= kGap) ++gaps_;
  unanswered_ = 0;
  if (type == ReplyType::PowerIsOff) {
    ++offRefusals_;
    return;
  }
  offRefusals_ = 0;
  lastReply_ = now;
  if (type == ReplyType::PowerOn) identifier_ = DecodePowerOnRadioID(frame);
  if (type == ReplyType::RadioID) identifier_ = DecodeRadioID(frame);
  if (type == ReplyType::ChannelSet) ReceivedChannelSet(frame);
}

// The radio answers in order. A reply that was lost leaves its channel in the list until a later one takes it out.
void LineTraffic::ReceivedChannelSet(std::string_view frame) {
  const std::optional<std::int16_t> channel = DecodeChannelSet(frame);
  if (!channel) {
    if (asked_.empty()) return;
    asked_.pop_front();
    if (asked_.empty()) tuning_ = Tuning::Refused;
    return;
  }
  const auto asked = std::find(asked_.begin(), asked_.end(), *channel);
  if (asked != asked_.end()) {
    asked_.erase(asked_.begin(), asked + 1);
    if (asked_.empty()) tuning_ = Tuning::Confirmed;
  } else if (asked_.empty() && !(tuning_ == Tuning::Confirmed && channel_ == *channel)) {
    tuning_ = Tuning::ByUser;
  }
  channel_ = *channel;
}

void LineTraffic::LineOpened(Milliseconds now) {
  unanswered_ = 0;
  offRefusals_ = 0;
  lastReply_ = now;
  DoubtTuning();
}

void LineTraffic::DoubtTuning() {
  asked_.clear();
  if (tuning_ != Tuning::NeverAsked) tuning_ = Tuning::Doubtful;
}

}  // namespace kestrune::radio
