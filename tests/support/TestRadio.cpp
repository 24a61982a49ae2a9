#include "support/TestRadio.h"

#include <fmt/format.h>

namespace kestrune::test {
namespace {

constexpr std::string_view kTrailer("\xED\xED", 2);

/// Header, length, and a payload of so many zero bytes that begins with the type; then the trailer.
std::string Frame(unsigned char type, std::size_t payload) {
  std::string frame("\x5A\xA5", 2);
  frame += '\0';
  frame += static_cast<char>(payload);
  frame += static_cast<char>(type);
  frame.append(payload - 1, '\0');
  frame += kTrailer;
  return frame;
}

/// Radio texts fill 16 bytes.
void PutText(std::string& frame, std::size_t offset, const std::string& text) {
  frame.replace(offset, 16, (text + std::string(16, ' ')).substr(0, 16));
}

}  // namespace

TestRadio::TestRadio(SimulatedEventLoop& loop) : loop_(loop) {}

void TestRadio::Play(int channel, std::string artist, std::string song) {
  Channels[channel].Artist = std::move(artist);
  Channels[channel].Song = std::move(song);
}

base::Result TestRadio::Open() {
  if (const auto obstacle = Obstacles.find(port_); obstacle != Obstacles.end()) {
    return base::Result::Failed(obstacle->second);
  }
  if (!Exists()) return base::Result::Failed(fmt::format("there is no port {}", port_));
  Openings.emplace_back(loop_.SteadyNow(), port_);
  waiting_.clear();
  openPort_ = port_;
  open_ = true;
  return base::Result::Done();
}

void TestRadio::OpenLater(std::function<void(const base::Result& opened)> done) {
  Close();
  loop_.Post([this, done = std::move(done), closings = closings_] {
    if (closings == closings_) done(Open());
  });
}

std::string TestRadio::Input() {
  std::string bytes;
  if (open_) bytes.swap(waiting_);
  if (open_ && Chatters) bytes += "chatter";
  return bytes;
}

bool TestRadio::Output(std::string_view bytes) {
  if (!open_) return false;
  std::string hex;
  for (const char byte : bytes) hex += fmt::format("{:02X}", static_cast<unsigned char>(byte));
  if (const auto stranger = Strangers.find(openPort_); stranger != Strangers.end()) {
    CommandsToStrangers.push_back(hex);
    AnswerAsStranger(bytes, stranger->second);
    return true;
  }
  Commands.push_back(hex);
  WhenCommanded();
  if (Answers) Answer(bytes);
  return true;
}

void TestRadio::Answer(std::string_view command) {
  const auto type = static_cast<unsigned char>(command.at(4));
  if (!PoweredOn && type != 0x00 && type != 0x74) return Send(Frame(0xFF, 2));
  switch (type) {
    case 0x00: {
      PoweredOn = true;
      std::string reply = Frame(0x80, 27);
      reply.replace(23, 8, Identifier);
      return Send(reply);
    }
    case 0x01:
      PoweredOn = false;
      return Send(Frame(0x81, 2));
    case 0x10: {
      std::string reply = Frame(0x90, 6);
      reply[5] = RefusesTuning ? '\x02' : '\x01';
      reply[7] = command.at(6);
      if (!RefusesTuning) TunedChannel = static_cast<unsigned char>(command.at(6));
      return Send(reply);
    }
    case 0x13:
      Muted = command.at(5) != 0;
      return Send(Frame(0x93, 4));
    case 0x25: {
      const int channel = static_cast<unsigned char>(command.at(6));
      if (command.at(5) == 0x08) return Send(ChannelInfo(channel));
      const auto next = Channels.upper_bound(channel);
      return Send(ChannelInfo(next == Channels.end() ? 0 : next->first));
    }
    case 0x31: {
      std::string reply = Frame(0xB1, 12);
      reply.replace(8, 8, Identifier);
      return Send(reply);
    }
    case 0x43: {
      std::string reply = Frame(0xC3, 26);
      reply[28] = 54;  // 80 percent
      reply[29] = 70;  // 99 percent
      return Send(reply);
    }
    default:
      return;  // setup steps get no answer
  }
}

void TestRadio::AnswerAsStranger(std::string_view command, const std::string& identifier) {
  if (command.at(4) == 0x00) Send(Frame(0x80, 27).replace(23, 8, identifier));
  if (command.at(4) == 0x31) Send(Frame(0xB1, 12).replace(8, 8, identifier));
}

std::string TestRadio::ChannelInfo(int channel) const {
  std::string reply = Frame(0xA5, 75);
  reply[7] = static_cast<char>(channel);
  const auto found = Channels.find(channel);
  const Playing playing = found == Channels.end() ? Playing{} : found->second;
  PutText(reply, 10, playing.Station);
  PutText(reply, 28, playing.Genre);
  PutText(reply, 45, playing.Artist);
  PutText(reply, 61, playing.Song);
  return reply;
}

void TestRadio::Send(std::string frame) {
  loop_.AtHardware(AnswerDelay, [this, frame = std::move(frame)] {
    if (!open_) return;
    waiting_ += frame;
    if (waiting_.size() >= static_cast<std::size_t>(threshold_)) loop_.Post([this] { handler_(); });
  });
}

}  // namespace kestrune::test
