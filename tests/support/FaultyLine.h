#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <random>
#include <string>
#include <string_view>

#include "platform/SerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// A serial line that misbehaves, around one that does not. Each fault has a name and a chance; the same seed
/// gives the same faults.
class FaultyLine final : public platform::SerialPort {
 public:
  /// Chances from 0 to 1: the first two for each command, the others for each time bytes are read.
  struct Faults {
    double LostCommand = 0;  ///< it never reaches the radio
    double NoiseBefore = 0;  ///< some bytes of noise come back at once
    double LostReply = 0;    ///< all that has arrived is gone
    double CorruptByte = 0;  ///< one of the bytes is another one
    double SplitFrame = 0;   ///< only the first half comes now, the rest 70 ms later
  };

  FaultyLine(platform::SerialPort& honest, SimulatedEventLoop& loop, std::uint32_t seed)
      : honest_(honest), loop_(loop), random_(seed) {}

  Faults Now;
  int FaultsDone = 0;

  void SetCommPort(std::int16_t number) override { honest_.SetCommPort(number); }
  void SetSettings(std::string_view settings) override { honest_.SetSettings(settings); }
  void SetReceiveThreshold(int bytes) override { honest_.SetReceiveThreshold(bytes); }
  [[nodiscard]] bool Exists() const override { return honest_.Exists(); }
  [[nodiscard]] std::string Device() const override { return honest_.Device(); }
  base::Result Open() override { return honest_.Open(); }
  void OpenLater(std::function<void(const base::Result& opened)> done) override {
    honest_.OpenLater(std::move(done));
  }
  void Close() override { honest_.Close(); }
  [[nodiscard]] bool IsOpen() const override { return honest_.IsOpen(); }
  void SetDataTerminalReady(bool on) override { honest_.SetDataTerminalReady(on); }
  void SetRequestToSend(bool on) override { honest_.SetRequestToSend(on); }
  void SetReceiveHandler(std::function<void()> handler) override {
    handler_ = handler;
    honest_.SetReceiveHandler(std::move(handler));
  }
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] bool Output(std::string_view bytes) override;

 private:
  [[nodiscard]] bool Strikes(double chance);
  void HoldBack(std::string rest);

  platform::SerialPort& honest_;
  SimulatedEventLoop& loop_;
  std::mt19937 random_;
  std::function<void()> handler_ = [] {};
  std::string arrived_;
};

}  // namespace kestrune::test
