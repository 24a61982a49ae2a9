#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SerialPort.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// A serial line whose other end follows a script. Bytes reach it at given moments, even while the program
/// sleeps; what is written to it is kept with its moment.
///
/// Bytes that arrive while the line is closed are lost. Closing drops what was not read.
class ScriptedSerialPort final : public platform::SerialPort {
 public:
  using Duration = std::chrono::milliseconds;

  struct Written {
    Duration At;
    std::int16_t Port = 0;
    std::string Bytes;
  };

  explicit ScriptedSerialPort(SimulatedEventLoop& loop) : loop_(loop) {}

  // The script.

  void Arrive(std::string_view bytes);
  void ArriveAfter(Duration delay, std::string bytes);
  /// Each time this frame is written (to the given port, or to any if 0), these bytes arrive after the delay.
  /// Of several rules for a frame the first that is not used up counts.
  void WhenWritten(std::string frame, std::string reply, Duration after, std::int16_t port = 0,
                   int times = std::numeric_limits<int>::max());
  /// Opening this port fails with the text; 0 means every port without a text of its own. An empty text lets
  /// it open again.
  void Refuse(std::int16_t port, std::string text) { refusals_[port] = std::move(text); }
  /// The same, and there is no device at all.
  void Remove(std::int16_t port, std::string text) {
    refusals_[port] = std::move(text);
    absent_.insert(port);
  }
  /// These bytes wait to be read whenever a port has been opened.
  void GreetWith(std::string bytes) { greeting_ = std::move(bytes); }
  /// From now on OpenLater is done after this time, or never if it is negative.
  void OpeningTakes(Duration duration) { openingTakes_ = duration; }
  /// The line goes dead while it is open.
  void Die();

  // What the program did.

  [[nodiscard]] const std::vector<Written>& Writes() const { return writes_; }
  /// The bytes of all writes since the last call.
  std::vector<std::string> TakeWrites();
  /// "CommPort 3", "Settings 9600,n,8,1", "RThreshold 5", "Open", "Close", "OpenLater", "DTR on", "RTS off", in the order
  /// of the calls.
  [[nodiscard]] const std::vector<std::string>& Calls() const { return calls_; }
  void ForgetCalls() { calls_.clear(); }
  [[nodiscard]] bool DataTerminalReady() const { return dataTerminalReady_; }
  [[nodiscard]] bool RequestToSend() const { return requestToSend_; }
  /// How long the receive handler might have waited each time that it might.
  [[nodiscard]] const std::vector<Duration>& Held() const { return held_; }
  [[nodiscard]] std::size_t Waiting() const { return waiting_.size(); }

  // The port's contract.

  void SetCommPort(std::int16_t number) override;
  void SetSettings(std::string_view settings) override;
  void SetReceiveThreshold(int bytes) override;
  [[nodiscard]] bool Exists() const override {
    return !absent_.contains(refusals_.contains(commPort_) ? commPort_ : std::int16_t{0});
  }
  [[nodiscard]] std::string Device() const override { return "/dev/radio" + std::to_string(commPort_); }
  base::Result Open() override;
  void OpenLater(std::function<void(const base::Result& opened)> done) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override { return open_; }
  void SetDataTerminalReady(bool on) override;
  void SetRequestToSend(bool on) override;
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] bool Output(std::string_view bytes) override;
  void SetReceiveHandler(std::function<void()> handler) override { handler_ = std::move(handler); }
  void HoldReceiveHandler(Duration time) override { held_.push_back(time); }

 private:
  struct Rule {
    std::string Frame;
    std::string Reply;
    Duration After;
    std::int16_t Port;
    int Times;
  };

  [[nodiscard]] std::string Refusal() const;

  SimulatedEventLoop& loop_;
  std::function<void()> handler_;
  std::map<std::int16_t, std::string> refusals_;
  std::set<std::int16_t> absent_;
  std::vector<Rule> rules_;
  std::vector<Written> writes_;
  std::size_t taken_ = 0;
  std::vector<std::string> calls_;
  std::vector<Duration> held_;

  std::int16_t commPort_ = 0;
  std::int16_t openedPort_ = 0;
  std::size_t threshold_ = 1;
  Duration openingTakes_{0};
  int openings_ = 0;  // begun or given up
  bool open_ = false;
  bool dataTerminalReady_ = false;
  bool requestToSend_ = false;
  bool notified_ = false;  // a notification is on its way
  std::string waiting_;
  std::string greeting_;
};

}  // namespace kestrune::test
