#include "radio/line/Replies.h"

#include <algorithm>

#include "base/Numbers.h"
#include "base/RadioText.h"
#include "base/Text.h"

namespace kestrune::radio {

namespace {

std::string_view BytesAt(std::string_view frame, std::size_t offset, std::size_t count) {
  return offset < frame.size() ? frame.substr(offset, count) : std::string_view{};
}

// Still in the radio's character set.
std::string TextField(std::string_view frame, std::size_t offset) {
  std::string text(BytesAt(frame, offset, 16));
  std::erase(text, '\0');
  return std::string(base::Trim(text));
}

std::string RepairCase(const std::string& text) {
  const bool oneCase = text == base::RadioTextLower(text) || text == base::RadioTextUpper(text);
  return oneCase ? base::TitleCaseText(text) : text;
}

std::int16_t WholePart(double value) {
  return static_cast<std::int16_t>(value);
}

std::int16_t TerrestrialQuality(std::uint8_t highByte, std::uint8_t lowByte) {
  // A raw value beyond 16 bits with a sign falls back on its high byte.
  const int raw = highByte < 0x80 ? highByte * 256 + lowByte : highByte;
  const double quality = 100 - base::RoundHalfEven(raw / 68.0) * 10;
  return WholePart(std::clamp(quality, 0.0, 100.0));
}

}  // namespace

std::uint8_t ByteAt(std::string_view frame, std::size_t offset) {
  return offset < frame.size() ? static_cast<std::uint8_t>(frame[offset]) : std::uint8_t{0};
}

bool IsReply(std::string_view frame) {
  if (!frame.starts_with("\x5A\xA5")) return false;
  switch (static_cast<ReplyType>(ByteAt(frame, 4))) {
    case ReplyType::PowerOn:
    case ReplyType::PowerOff:
    case ReplyType::ChannelSet:
    case ReplyType::Mute:
    case ReplyType::ChannelInfo:
    case ReplyType::RadioID:
    case ReplyType::Signal:
    case ReplyType::Silent:
    case ReplyType::SetupAgain:
    case ReplyType::PowerIsOff:
      return true;
  }
  return false;
}

std::string DecodePowerOnRadioID(std::string_view frame) {
  return base::RadioTextToUtf8(BytesAt(frame, 23, 8));
}

std::string DecodeRadioID(std::string_view frame) {
  return base::RadioTextToUtf8(BytesAt(frame, 8, 8));
}

std::optional<std::int16_t> DecodeChannelSet(std::string_view frame) {
  static constexpr std::string_view kSuccess("\x5A\xA5\x00\x06\x90\x01\x00", 7);
  if (!frame.starts_with(kSuccess)) return std::nullopt;
  return ByteAt(frame, 7);
}

bool DecodeMute(std::string_view frame) {
  const std::uint8_t digit = ByteAt(frame, 7);
  return digit >= '1' && digit <= '9';
}

ChannelInfo DecodeChannelInfo(std::string_view frame) {
  ChannelInfo info;
  info.Channel = ByteAt(frame, 7);
  info.Station = base::RadioTextToUtf8(TextField(frame, 10));
  info.Genre = base::RadioTextToUtf8(TextField(frame, 28));
  info.Artist = base::RadioTextToUtf8(RepairCase(TextField(frame, 45)));
  info.Song = base::RadioTextToUtf8(RepairCase(TextField(frame, 61)));
  return info;
}

SignalQuality DecodeSignal(std::string_view frame) {
  SignalQuality quality;
  quality.Satellite1 = WholePart(pcrSignalPercent(ByteAt(frame, 28)));
  quality.Satellite2 = WholePart(pcrSignalPercent(ByteAt(frame, 29)));
  quality.Terrestrial = TerrestrialQuality(ByteAt(frame, 20), ByteAt(frame, 21));
  return quality;
}

double pcrSignalPercent(std::int16_t raw) {
  const double value = std::max(raw - 6, 0);
  const double quarter = base::RoundHalfEven(value / 4.0);
  if (quarter < 12) return value * 80 / 12 / 4;
  if (quarter < 16) return (value - 48) * 20 / 4 / 4 + 80;
  return 99.9;
}

}  // namespace kestrune::radio
