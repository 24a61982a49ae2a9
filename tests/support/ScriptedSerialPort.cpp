#include "support/ScriptedSerialPort.h"

#include <utility>

namespace kestrune::test {

void ScriptedSerialPort::Arrive(std::string_view bytes) {
  if (!open_) return;
  waiting_ += bytes;
  if (waiting_.size() < threshold_ || notified_) return;
  notified_ = true;
  loop_.Post([this] {
    notified_ = false;
    if (handler_) handler_();
  });
}

void ScriptedSerialPort::ArriveAfter(Duration delay, std::string bytes) {
  loop_.AtHardware(delay, [this, arriving = std::move(bytes)] { Arrive(arriving); });
}

void ScriptedSerialPort::WhenWritten(std::string frame, std::string reply, Duration after, std::int16_t port,
                                     int times) {
  rules_.push_back({std::move(frame), std::move(reply), after, port, times});
}

void ScriptedSerialPort::Die() {
  open_ = false;
  waiting_.clear();
}

std::vector<std::string> ScriptedSerialPort::TakeWrites() {
  std::vector<std::string> frames;
  for (; taken_ < writes_.size(); ++taken_) frames.push_back(writes_[taken_].Bytes);
  return frames;
}

void ScriptedSerialPort::SetCommPort(std::int16_t number) {
  calls_.push_back("CommPort " + std::to_string(number));
  commPort_ = number;
}

void ScriptedSerialPort::SetSettings(std::string_view settings) {
  calls_.push_back("Settings " + std::string(settings));
}

void ScriptedSerialPort::SetReceiveThreshold(int bytes) {
  calls_.push_back("RThreshold " + std::to_string(bytes));
  threshold_ = static_cast<std::size_t>(bytes);
}

std::string ScriptedSerialPort::Refusal() const {
  auto refusal = refusals_.find(commPort_);
  if (refusal == refusals_.end()) refusal = refusals_.find(0);
  return refusal == refusals_.end() ? std::string() : refusal->second;
}

base::Result ScriptedSerialPort::Open() {
  calls_.emplace_back("Open");
  ++openings_;
  if (const std::string refusal = Refusal(); !refusal.empty()) return base::Result::Failed(refusal);
  open_ = true;
  openedPort_ = commPort_;
  waiting_ = greeting_;
  return base::Result::Done();
}

void ScriptedSerialPort::OpenLater(std::function<void(const base::Result& opened)> done) {
  calls_.emplace_back("OpenLater");
  open_ = false;
  const int opening = ++openings_;
  if (openingTakes_ < Duration(0)) return;
  loop_.AtHardware(openingTakes_, [this, opening, done = std::move(done)] {
    loop_.Post([this, opening, done] {
      if (opening == openings_) done(Open());
    });
  });
}

void ScriptedSerialPort::Close() {
  calls_.emplace_back("Close");
  ++openings_;
  open_ = false;
  waiting_.clear();
}

void ScriptedSerialPort::SetDataTerminalReady(bool on) {
  calls_.emplace_back(on ? "DTR on" : "DTR off");
  dataTerminalReady_ = on;
}

void ScriptedSerialPort::SetRequestToSend(bool on) {
  calls_.emplace_back(on ? "RTS on" : "RTS off");
  requestToSend_ = on;
}

std::string ScriptedSerialPort::Input() {
  return std::exchange(waiting_, {});
}

bool ScriptedSerialPort::Output(std::string_view bytes) {
  if (!open_) return false;
  writes_.push_back({loop_.SteadyNow(), openedPort_, std::string(bytes)});
  for (Rule& rule : rules_) {
    if (rule.Frame != bytes || rule.Times == 0 || (rule.Port != 0 && rule.Port != openedPort_)) continue;
    --rule.Times;
    ArriveAfter(rule.After, rule.Reply);
    break;
  }
  return true;
}

}  // namespace kestrune::test
