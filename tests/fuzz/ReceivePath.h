#pragma once

#include <cstddef>
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

namespace kestrune::test {

/// The rules of cutting frames once more, without a thought for speed.
class PlainReader {
 public:
  /// The frames that these bytes complete.
  [[nodiscard]] std::vector<std::string> Run(std::string_view bytes);
  [[nodiscard]] const std::string& Left() const { return buffer_; }

 private:
  std::string buffer_;
};

/// Two readers of the same bytes. Ends the program if they differ, or if a byte is not accounted for.
class ReaderPair {
 public:
  void Take(std::string_view piece);

  [[nodiscard]] std::size_t BytesIn() const { return bytesIn_; }
  [[nodiscard]] std::size_t Frames() const { return frames_; }
  [[nodiscard]] std::size_t JunkBytes() const { return reader_.JunkBytes(); }

 private:
  radio::FrameReader reader_;
  PlainReader plain_;
  std::size_t bytesIn_ = 0;
  std::size_t bytesInFrames_ = 0;
  std::size_t frames_ = 0;
};

/// The session and the channel table behind an open line, walking through the channels on simulated time. Ends the
/// program if a reply is never done with.
class ReceivingProgram {
 public:
  ReceivingProgram();

  void Take(std::string_view piece);
  /// The end of the run: the list is saved, and read again.
  void End();

 private:
  class NoEvents final : public radio::ChannelEvents {
   public:
    void ShowChannel(const radio::ChannelEntry& /*entry*/) override {}
    void ShowTunedChannel(std::int16_t /*number*/, const radio::ChannelEntry& /*entry*/) override {}
    void ShowBareTitle() override {}
    void ChannelTuned() override {}
    void WalkFinished() override {}
  };

  SimulatedEventLoop loop_;
  ScriptedSerialPort port_{loop_};
  MemoryFiles files_;
  RecordingJournal journal_;
  base::RunState run_;
  radio::RadioState state_;
  NoEvents events_;
  OpenLink link_{port_, loop_, run_, journal_};
  radio::Channels channels_{
      state_, run_, {.Link = link_, .Files = files_, .Loop = loop_, .Journal = journal_}, events_};
};

}  // namespace kestrune::test
