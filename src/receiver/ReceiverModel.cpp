#include "receiver/ReceiverModel.h"

#include <utility>

#include "receiver/CommandRules.h"
#include "receiver/Timeline.h"
#include "receiver/WireText.h"

namespace kestrune::receiver {
namespace {

constexpr std::uint8_t kSelect = 0x10;
constexpr std::size_t kIdentifierSize = 8;
constexpr std::size_t kTextSize = 16;
constexpr std::size_t kBeforePayload = 4;

std::uint8_t ByteAt(std::string_view bytes, std::size_t i) {
  return i < bytes.size() ? static_cast<std::uint8_t>(bytes[i]) : 0;
}

/// The payload of a reply, with its fields at their offsets in the frame. Every byte outside a field is 01, so that
/// a reader that is off by one is caught.
class Payload {
 public:
  Payload(std::uint8_t type, std::size_t size) : bytes_(size, '\x01') {
    bytes_[0] = static_cast<char>(type);
    if (size > 2) bytes_[2] = '\0';
  }

  Payload& Byte(std::size_t frameOffset, unsigned value) {
    bytes_[frameOffset - kBeforePayload] = static_cast<char>(value);
    return *this;
  }
  Payload& Bytes(std::size_t frameOffset, std::string_view value) {
    bytes_.replace(frameOffset - kBeforePayload, value.size(), value);
    return *this;
  }
  [[nodiscard]] std::string Frame() const { return FrameOf(bytes_); }

 private:
  std::string bytes_;
};

}  // namespace

std::string FrameOf(std::string_view payload) {
  std::size_t sum = payload.size() - 1;
  for (const char byte : payload) sum += static_cast<std::uint8_t>(byte);
  std::string frame = "\x5A\xA5";
  frame.push_back(static_cast<char>(payload.size() / 256));
  frame.push_back(static_cast<char>(payload.size() % 256));
  frame.append(payload);
  frame.push_back('\x01');
  frame.push_back(static_cast<char>(sum % 256));
  return frame;
}

ReceiverModel::ReceiverModel(LineUp lineUp, Setup setup)
    : lineUp_(std::move(lineUp)),
      setup_(std::move(setup)),
      poweredOn_(setup_.PoweredOn),
      tuned_(setup_.Tuned) {
  setup_.Identifier.resize(kIdentifierSize, ' ');
  if (tuned_ == 0 && !lineUp_.Stations.empty()) tuned_ = lineUp_.Stations.front().Number;
}

std::vector<std::string> ReceiverModel::Answer(std::chrono::milliseconds now, std::string_view command) {
  const std::uint8_t type = ByteAt(command, 0);
  if (!FaultOfPayload(command).empty()) {
    if (type != kSelect || !poweredOn_) return {};
    RefuseNextSelect();
  }
  switch (type) {
    case 0x00:
      return {PowerOn()};
    case 0x01:
      return {PowerOff()};
    case 0x74:
      return {FrameOf({"\xF4\x01\x00", 3})};
    default:
      break;
  }
  if (!poweredOn_) return {FrameOf(std::string{'\xFF', static_cast<char>(type)})};
  switch (type) {
    case kSelect:
      return {Select(command)};
    case 0x13:
      return {Mute(command)};
    case 0x25:
      return {ChannelInfo(now, command)};
    case 0x31:
      return {Identifier()};
    case 0x40:
      return {FrameOf({"\xC0\x01\x00", 3})};
    case 0x43:
      return {Signal()};
    default:
      return {};
  }
}

std::string ReceiverModel::PowerOn() {
  poweredOn_ = true;
  return Payload(0x80, 27).Bytes(23, setup_.Identifier).Frame();
}

std::string ReceiverModel::PowerOff() {
  poweredOn_ = false;
  return Payload(0x81, 3).Frame();
}

std::string ReceiverModel::Select(std::string_view command) {
  const int channel = ByteAt(command, 2);
  Payload reply(0x90, 6);
  reply.Byte(7, static_cast<unsigned>(channel)).Byte(8, 0).Byte(9, 0);
  const bool askedToRefuse = std::exchange(refuseNextSelect_, false);
  const bool refused = askedToRefuse || lineUp_.Find(channel) == nullptr;
  if (refused) {
    reply.Byte(5, 0);
  } else {
    tuned_ = channel;
  }
  return reply.Frame();
}

std::string ReceiverModel::Mute(std::string_view command) {
  muted_ = ByteAt(command, 1) != 0;
  return Payload(0x93, 4).Byte(7, muted_ ? 1 : 0).Frame();
}

std::string ReceiverModel::ChannelInfo(std::chrono::milliseconds now, std::string_view command) const {
  const bool next = ByteAt(command, 1) == 0x09;
  const int channel = ByteAt(command, 2);
  const Station* const station = next ? lineUp_.After(channel) : lineUp_.Find(channel);
  Payload reply(0xA5, 73);
  // Channel 0 without texts is the end of the list, and the answer for a channel that does not exist.
  static const Station kNothing;
  const Station& described = station != nullptr ? *station : kNothing;
  const Playing playing = TextAt(described, now, setup_.Lead);
  return reply.Byte(7, static_cast<unsigned>(described.Number))
      .Bytes(10, WireText(described.Name, kTextSize))
      .Bytes(28, WireText(described.Genre, kTextSize))
      .Bytes(45, WireText(playing.What != nullptr ? playing.What->Artist : "", kTextSize))
      .Bytes(61, WireText(playing.What != nullptr ? playing.What->Title : "", kTextSize))
      .Frame();
}

std::string ReceiverModel::Identifier() const {
  return Payload(0xB1, 12).Bytes(8, setup_.Identifier).Frame();
}

std::string ReceiverModel::Signal() const {
  const SignalLevels& levels = setup_.Levels;
  return Payload(0xC3, 26)
      .Byte(20, levels.Terrestrial / 256U)
      .Byte(21, levels.Terrestrial % 256U)
      .Byte(28, levels.Satellite1)
      .Byte(29, levels.Satellite2)
      .Frame();
}

}  // namespace kestrune::receiver
