#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/SerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// A radio at the other end of the line, small enough to be seen through: it answers each command after a
/// moment with bytes laid out here by hand, and plays what the test asks for.
class TestRadio final : public platform::SerialPort {
 public:
  struct Playing {
    std::string Station;
    std::string Genre;
    std::string Artist;
    std::string Song;
  };

  /// Sits on port 1; the other ports have no device.
  explicit TestRadio(SimulatedEventLoop& loop);

  // What the test does with it. Channels are answered in rising order.
  std::map<int, Playing> Channels;
  void Play(int channel, std::string artist, std::string song);
  /// Pulls the cable: the line reads as closed, and the port has no device until Plug.
  void Unplug() {
    plugged_ = false;
    open_ = false;
  }
  void Plug() { plugged_ = true; }
  std::int16_t SittingOnPort = 1;  ///< 0: nowhere
  /// Devices that cannot be opened, by their ports, each with the cause.
  std::map<std::int16_t, std::string> Obstacles;
  bool Answers = true;    ///< false: nothing comes back
  bool PoweredOn = true;  ///< false: everything but power on is refused
  bool RefusesTuning = false;
  bool Chatters = false;  ///< whenever its line is read there is something on it
  std::string Identifier = "ABCD1234";
  std::chrono::milliseconds AnswerDelay{40};
  /// Runs for each command as it is written.
  std::function<void()> WhenCommanded = [] {};
  /// Other radios, by their ports, each with its identifier; they are switched on, and answer nothing but who they are.
  std::map<std::int16_t, std::string> Strangers;
  /// Says something unasked.
  void Say(std::string bytes) { Send(std::move(bytes)); }
  /// Reports what the channel plays, without being asked.
  void Report(int channel) { Send(ChannelInfo(channel)); }

  // What the program did to it.
  int TunedChannel = 0;
  bool Muted = false;
  std::vector<std::string> Commands;  ///< every frame written, as hex digits
  std::vector<std::string> CommandsToStrangers;
  /// Every opening of a port that had a device, with its moment.
  std::vector<std::pair<std::chrono::milliseconds, std::int16_t>> Openings;

  // SerialPort.
  void SetCommPort(std::int16_t number) override { port_ = number; }
  void SetSettings(std::string_view /*settings*/) override {}
  void SetReceiveThreshold(int bytes) override { threshold_ = bytes; }
  [[nodiscard]] bool Exists() const override {
    return (plugged_ && port_ == SittingOnPort) || Obstacles.contains(port_) || Strangers.contains(port_);
  }
  [[nodiscard]] std::string Device() const override { return "/dev/radio" + std::to_string(port_); }
  base::Result Open() override;
  void OpenLater(std::function<void(const base::Result& opened)> done) override;
  void Close() override {
    open_ = false;
    ++closings_;
  }
  [[nodiscard]] bool IsOpen() const override { return open_; }
  void SetDataTerminalReady(bool /*on*/) override {}
  void SetRequestToSend(bool /*on*/) override {}
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] bool Output(std::string_view bytes) override;
  void SetReceiveHandler(std::function<void()> handler) override { handler_ = std::move(handler); }

 private:
  void Answer(std::string_view command);
  void AnswerAsStranger(std::string_view command, const std::string& identifier);
  void Send(std::string frame);
  [[nodiscard]] std::string ChannelInfo(int channel) const;

  SimulatedEventLoop& loop_;
  std::function<void()> handler_ = [] {};
  std::string waiting_;
  std::int16_t port_ = 0;
  std::int16_t openPort_ = 0;
  int threshold_ = 1;
  int closings_ = 0;
  bool open_ = false;
  bool plugged_ = true;
};

}  // namespace kestrune::test
