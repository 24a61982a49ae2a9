#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrune::test {

/// What is in the header and the side information of one MPEG layer III frame.
struct Mp3Frame {
  std::size_t At = 0;
  std::size_t Bytes = 0;
  int Version = 0;  ///< 3 MPEG-1, 2 MPEG-2, 0 MPEG-2.5
  bool Crc = false;
  int Bitrate = 0;  ///< kbit/s
  int Rate = 0;     ///< Hz
  int Mode = 0;     ///< 0 stereo, 1 joint, 2 dual channel, 3 mono
  int ModeExtension = 0;
  int Emphasis = 0;
  int MainDataBegin = 0;
  struct Granule {
    bool Switched = false;
    int BlockType = 0;  ///< 2 short blocks
    int Part23Bits = 0;
  };
  std::array<std::array<Granule, 2>, 2> Granules{};  ///< by granule, then channel
};

/// The frames of a file after its ID3v2 tag, up to the ID3v1 tag; the first is the info frame. Stops, with
/// `Broken` set, where no frame follows.
struct Mp3Stream {
  std::vector<Mp3Frame> Frames;
  bool Broken = false;
  std::string Bytes;

  [[nodiscard]] std::vector<Mp3Frame> Sound() const {
    return {Frames.begin() + (Frames.empty() ? 0 : 1), Frames.end()};
  }
};
Mp3Stream ParseMp3(const std::string& bytes);

/// The info frame's fields as a player reads them.
struct Mp3Info {
  std::string Name;  ///< "Info" or "Xing", empty if there is none
  long Frames = 0;
  long Bytes = 0;
  bool HasTable = false;
  std::array<int, 100> Table{};
  std::string Encoder;
  int Method = 0;
  int Delay = 0;
  int Padding = 0;
  long MusicBytes = 0;
  int MusicCrc = 0;
  int TagCrc = 0;
  int TagBytes = 0;  ///< that the tag's checksum covers
};
Mp3Info ParseInfo(const Mp3Stream& stream);

}  // namespace kestrune::test
