#include "ReceivePath.h"

#include <chrono>
#include <cstdlib>

namespace kestrune::test {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

std::vector<std::string> PlainReader::Run(std::string_view bytes) {
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

void ReaderPair::Take(std::string_view piece) {
  bytesIn_ += piece.size();
  reader_.BeginRun();
  reader_.Append(piece);
  std::vector<std::string> frames;
  std::string frame;
  while (reader_.Next(frame) == radio::FrameStep::Frame) {
    if (frame.starts_with("\x5A\xA5")) {
      bytesInFrames_ += frame.size();
      ++frames_;
    }
    frames.push_back(frame);
  }
  Require(frames == plain_.Run(piece));
  Require(reader_.Pending() == plain_.Left());
  Require(bytesIn_ == bytesInFrames_ + reader_.JunkBytes() + reader_.Pending().size());
}

ReceivingProgram::ReceivingProgram() {
  radio::RadioSession& session = link_.SessionForTests();
  session.pcrChannelInfoReceived = [this](const radio::ChannelInfo& info) {
    channels_.pcrChannelInfoReceived(info);
  };
  files_.MakeFolders("/data");
  channels_.SetListPlace("/data", "");
  session.SetCOMPort(1);
  session.SetPortOpen(true);
  channels_.StartWalk();
}

void ReceivingProgram::Take(std::string_view piece) {
  port_.Arrive(piece);
  loop_.Run(std::chrono::milliseconds(10));
  channels_.RequestChannelInfo();
  channels_.CopyRadioText();
}

void ReceivingProgram::End() {
  Require(!state_.InfoBusy);
  channels_.SaveChannels();
  channels_.LoadChannels();
}

}  // namespace kestrune::test
