// Bytes from the line in pieces of any size: the reader must cut them as a plain reading of its rules does
// and account for every byte, and the session and the channel table behind it must survive whatever they say.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "radio/channels/Channels.h"
#include "radio/line/FrameReader.h"
#include "radio/line/OpenLink.h"
#include "support/MemoryFiles.h"
#include "support/RecordingJournal.h"
#include "support/ScriptedSerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace {

using kestrune::radio::FrameReader;
using kestrune::radio::FrameStep;
using Milliseconds = std::chrono::milliseconds;

void Require(bool holds) {
  if (!holds) std::abort();
}

// The first byte of the input seeds the sizes of the pieces, so that a corpus is plain radio traffic.
std::vector<std::string_view> Pieces(std::string_view input) {
  std::vector<std::string_view> pieces;
  if (input.empty()) return pieces;
  std::uint32_t seed = static_cast<unsigned char>(input.front());
  input.remove_prefix(1);
  while (!input.empty()) {
    seed = seed * 1664525U + 1013904223U;
    const std::size_t size = std::min<std::size_t>(input.size(), 1 + (seed >> 24U) % 96);
    pieces.push_back(input.substr(0, size));
    input.remove_prefix(size);
  }
  return pieces;
}

// The rules once more, without a thought for speed.
class PlainReader {
 public:
  std::vector<std::string> Run(std::string_view bytes) {
    buffer_ += bytes;
    std::vector<std::string> frames;
    std::size_t length = 0;
    while (buffer_.size() > 6) {
      const std::size_t header = buffer_.substr(0, 6).find("\x5A\xA5");
      if (header != std::string::npos) buffer_.erase(0, header);
      if (buffer_.size() >= 4 && buffer_.starts_with("\x5A\xA5")) {
        const int claimed =
            static_cast<unsigned char>(buffer_[2]) * 256 + static_cast<unsigned char>(buffer_[3]);
        if (claimed <= 32767) length = static_cast<std::size_t>(claimed);
      }
      if (buffer_.size() < length + 6) break;
      frames.push_back(buffer_.substr(0, length + 6));
      buffer_.erase(0, length + 6);
    }
    return frames;
  }
  [[nodiscard]] const std::string& Left() const { return buffer_; }

 private:
  std::string buffer_;
};

void CompareReaders(const std::vector<std::string_view>& pieces) {
  FrameReader reader;
  PlainReader plain;
  std::size_t bytesIn = 0;
  std::size_t bytesInFrames = 0;
  for (const std::string_view piece : pieces) {
    bytesIn += piece.size();
    reader.BeginRun();
    reader.Append(piece);
    std::vector<std::string> frames;
    std::string frame;
    while (reader.Next(frame) == FrameStep::Frame) {
      if (frame.starts_with("\x5A\xA5")) bytesInFrames += frame.size();
      frames.push_back(frame);
    }
    Require(frames == plain.Run(piece));
    Require(reader.Pending() == plain.Left());
    Require(bytesIn == bytesInFrames + reader.JunkBytes() + reader.Pending().size());
  }
}

class NoEvents final : public kestrune::radio::ChannelEvents {
 public:
  void ShowChannel(const kestrune::radio::ChannelEntry& /*entry*/) override {}
  void ShowTunedChannel(std::int16_t /*number*/, const kestrune::radio::ChannelEntry& /*entry*/) override {}
  void ShowBareTitle() override {}
  void ChannelTuned() override {}
  void WalkFinished() override {}
};

void RunProgram(const std::vector<std::string_view>& pieces) {
  kestrune::test::SimulatedEventLoop loop;
  kestrune::test::ScriptedSerialPort port(loop);
  kestrune::test::MemoryFiles files;
  kestrune::test::RecordingJournal journal;
  kestrune::base::RunState run;
  kestrune::radio::RadioState state;
  NoEvents events;
  kestrune::test::OpenLink link(port, loop, run, journal);
  kestrune::radio::RadioSession& session = link.SessionForTests();
  kestrune::radio::Channels channels(
      state, run, {.Link = link, .Files = files, .Loop = loop, .Journal = journal}, events);
  session.pcrChannelInfoReceived = [&](const kestrune::radio::ChannelInfo& info) {
    channels.pcrChannelInfoReceived(info);
  };
  files.MakeFolders("/data");
  channels.SetListPlace("/data", "");
  session.SetCOMPort(1);
  session.SetPortOpen(true);
  channels.StartWalk();
  for (const std::string_view piece : pieces) {
    port.Arrive(piece);
    loop.Run(Milliseconds(10));
    channels.RequestChannelInfo();
    channels.CopyRadioText();
  }
  Require(!state.InfoBusy);
  channels.SaveChannels();
  channels.LoadChannels();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  const auto pieces = Pieces(input);
  CompareReaders(pieces);
  RunProgram(pieces);
  return 0;
}
