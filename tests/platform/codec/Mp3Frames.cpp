#include "platform/codec/Mp3Frames.h"

namespace kestrune::test {
namespace {

constexpr int kRates[3] = {44100, 48000, 32000};
constexpr int kBitrates1[16] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
constexpr int kBitrates2[16] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};

class Bits {
 public:
  Bits(const std::string& bytes, std::size_t at) : bytes_(bytes), bit_(at * 8) {}
  int Take(int count) {
    int value = 0;
    for (; count > 0; --count, ++bit_) {
      const auto byte = static_cast<unsigned char>(bytes_[bit_ / 8]);
      value = value << 1 | (byte >> (7 - bit_ % 8) & 1);
    }
    return value;
  }

 private:
  const std::string& bytes_;
  std::size_t bit_;
};

long Number(const std::string& bytes, std::size_t at, int count) {
  long value = 0;
  for (int i = 0; i < count; ++i)
    value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  return value;
}

std::size_t SideInfoBytes(const Mp3Frame& frame) {
  if (frame.Version == 3) return frame.Mode == 3 ? 17 : 32;
  return frame.Mode == 3 ? 9 : 17;
}

bool ParseFrame(const std::string& bytes, std::size_t at, Mp3Frame& frame) {
  if (at + 4 > bytes.size()) return false;
  Bits header(bytes, at);
  if (header.Take(11) != 0x7FF) return false;
  frame.At = at;
  frame.Version = header.Take(2);
  if (frame.Version == 1 || header.Take(2) != 1) return false;
  frame.Crc = header.Take(1) == 0;
  const int bitrate = header.Take(4);
  const int rate = header.Take(2);
  if (rate == 3) return false;
  const int padding = header.Take(1);
  header.Take(1);
  frame.Mode = header.Take(2);
  frame.ModeExtension = header.Take(2);
  header.Take(2);
  frame.Emphasis = header.Take(2);
  frame.Bitrate = frame.Version == 3 ? kBitrates1[bitrate] : kBitrates2[bitrate];
  frame.Rate = kRates[rate] / (frame.Version == 3 ? 1 : frame.Version == 2 ? 2 : 4);
  if (frame.Bitrate == 0) return false;
  const int size = (frame.Version == 3 ? 144000 : 72000) * frame.Bitrate / frame.Rate + padding;
  frame.Bytes = static_cast<std::size_t>(size);
  const std::size_t sideAt = at + (frame.Crc ? 6U : 4U);
  if (at + frame.Bytes > bytes.size() || sideAt + SideInfoBytes(frame) > bytes.size()) return false;

  Bits side(bytes, sideAt);
  const int channels = frame.Mode == 3 ? 1 : 2;
  const bool first = frame.Version == 3;
  frame.MainDataBegin = side.Take(first ? 9 : 8);
  side.Take(first ? (channels == 1 ? 5 : 3) : channels);
  if (first) side.Take(4 * channels);
  for (int granule = 0; granule < (first ? 2 : 1); ++granule) {
    for (int channel = 0; channel < channels; ++channel) {
      auto& facts =
          frame.Granules.at(static_cast<std::size_t>(granule)).at(static_cast<std::size_t>(channel));
      facts.Part23Bits = side.Take(12);
      side.Take(9 + 8 + (first ? 4 : 9));
      facts.Switched = side.Take(1) == 1;
      facts.BlockType = side.Take(2);
      if (!facts.Switched) facts.BlockType = 0;
      side.Take(20 + (first ? 3 : 2));
    }
  }
  return true;
}

}  // namespace

Mp3Stream ParseMp3(const std::string& bytes) {
  Mp3Stream stream;
  stream.Bytes = bytes;
  std::size_t at = 0;
  if (bytes.size() > 10 && bytes.compare(0, 3, "ID3") == 0) {
    for (std::size_t i = 6; i < 10; ++i) at = at << 7 | static_cast<unsigned char>(bytes[i]);
    at += 10;
  }
  std::size_t end = bytes.size();
  if (end >= 128 && bytes.compare(end - 128, 3, "TAG") == 0) end -= 128;
  while (at < end) {
    Mp3Frame frame;
    if (!ParseFrame(bytes, at, frame)) {
      stream.Broken = true;
      break;
    }
    stream.Frames.push_back(frame);
    at += frame.Bytes;
  }
  return stream;
}

Mp3Info ParseInfo(const Mp3Stream& stream) {
  Mp3Info info;
  if (stream.Frames.empty()) return info;
  const std::string& bytes = stream.Bytes;
  const Mp3Frame& frame = stream.Frames.front();
  std::size_t at = frame.At + 4 + SideInfoBytes(frame);
  info.Name = bytes.substr(at, 4);
  if (info.Name != "Info" && info.Name != "Xing") return {};
  const long flags = Number(bytes, at + 4, 4);
  at += 8;
  if ((flags & 1) != 0) info.Frames = Number(bytes, at, 4), at += 4;
  if ((flags & 2) != 0) info.Bytes = Number(bytes, at, 4), at += 4;
  info.HasTable = (flags & 4) != 0;
  if (info.HasTable) {
    for (int& entry : info.Table) entry = static_cast<unsigned char>(bytes[at++]);
  }
  if ((flags & 8) != 0) at += 4;
  info.Encoder = bytes.substr(at, 9);
  info.Method = static_cast<int>(Number(bytes, at + 9, 1) & 15);
  info.Delay = static_cast<int>(Number(bytes, at + 21, 3) >> 12);
  info.Padding = static_cast<int>(Number(bytes, at + 21, 3) & 0xFFF);
  info.MusicBytes = Number(bytes, at + 28, 4);
  info.MusicCrc = static_cast<int>(Number(bytes, at + 32, 2));
  info.TagCrc = static_cast<int>(Number(bytes, at + 34, 2));
  info.TagBytes = static_cast<int>(at + 34 - frame.At);
  return info;
}

}  // namespace kestrune::test
