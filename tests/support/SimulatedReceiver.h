#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SerialPort.h"
#include "receiver/VirtualReceiver.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// The virtual receiver on simulated time, at the other end of the serial port that the program opens. Bytes need their
/// time in both directions and arrive in lumps, as a USB adapter hands them over. The receiver's time 0 is
/// the making of this object.
class SimulatedReceiver final : public platform::SerialPort {
 public:
  using Milliseconds = std::chrono::milliseconds;

  struct Setup {
    receiver::LineUp Stations = receiver::BuiltInLineUp();
    receiver::ReceiverOptions Receiver;
    std::int16_t Port = 1;  ///< the only port that has a device
    Milliseconds Lump{16};  ///< bytes are handed over this often
    receiver::JsonLines* Log = nullptr;
  };

  /// The loop must outlive this object.
  explicit SimulatedReceiver(SimulatedEventLoop& loop);
  SimulatedReceiver(SimulatedEventLoop& loop, Setup setup);

  /// What the program wrote, call by call, with the moment on the loop's steady clock.
  struct Write {
    Milliseconds At;
    std::string Bytes;
  };
  [[nodiscard]] const std::vector<Write>& Writes() const { return writes_; }
  [[nodiscard]] int Opens() const { return opens_; }
  [[nodiscard]] bool DataTerminalReady() const { return dataTerminalReady_; }
  [[nodiscard]] bool RequestToSend() const { return requestToSend_; }
  [[nodiscard]] const std::string& Settings() const { return settings_; }

  /// Pulls the cable: the port reads as closed, and opens no more until Plug.
  void Unplug();
  void Plug() { plugged_ = true; }
  /// The device has this number from now on; for a device that is unplugged.
  void MoveTo(std::int16_t port) { setup_.Port = port; }
  /// The receiver at the other end has no power, and has it again.
  void CutPower() { receiver_.CutPower(Now()); }
  void RestorePower(bool on, int channel) { receiver_.RestorePower(Now(), on, channel); }
  /// These bytes arrive, whoever sent them.
  void Arrive(std::string_view bytes);

  [[nodiscard]] receiver::VirtualReceiver& Receiver() { return receiver_; }

  /// Sound from this moment on; see receiver::VirtualReceiver. Without it no sound is made, and no memory
  /// taken.
  void StartSound(receiver::SignalKind kind, int sampleRate);
  /// Stereo frames up to now, each given once.
  [[nodiscard]] std::vector<std::int16_t> TakeSound();

  void SetCommPort(std::int16_t number) override { port_ = number; }
  void SetSettings(std::string_view settings) override { settings_ = settings; }
  void SetReceiveThreshold(int bytes) override;
  [[nodiscard]] bool Exists() const override { return plugged_ && port_ == setup_.Port; }
  [[nodiscard]] std::string Device() const override { return "/dev/radio" + std::to_string(port_); }
  base::Result Open() override;
  void OpenLater(std::function<void(const base::Result& opened)> done) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return open_; }
  void SetDataTerminalReady(bool on) override { dataTerminalReady_ = on; }
  void SetRequestToSend(bool on) override { requestToSend_ = on; }
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] bool Output(std::string_view bytes) override;
  void SetReceiveHandler(std::function<void()> handler) override { handler_ = std::move(handler); }

 private:
  [[nodiscard]] Milliseconds Now() const { return loop_.SteadyNow() - start_; }
  void AtHardware(Milliseconds delay, void (SimulatedReceiver::*happening)());
  void CommandArrives();
  void AwaitBytes();
  void BytesArrive();
  void NotifyIfEnough();
  void Notify();

  SimulatedEventLoop& loop_;
  Setup setup_;
  Milliseconds start_;
  receiver::VirtualReceiver receiver_;
  receiver::LinePacer towardsReceiver_;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  std::function<void()> handler_;
  std::vector<Write> writes_;
  std::string settings_;
  std::string input_;
  std::int16_t port_ = 0;
  int threshold_ = 1;
  int opens_ = 0;
  int closings_ = 0;
  bool open_ = false;
  bool plugged_ = true;
  bool dataTerminalReady_ = false;
  bool requestToSend_ = false;
  bool awaiting_ = false;
  bool notifying_ = false;
};

}  // namespace kestrune::test
