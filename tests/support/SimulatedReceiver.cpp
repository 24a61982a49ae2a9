#include "support/SimulatedReceiver.h"

#include <algorithm>
#include <utility>

namespace kestrune::test {

using std::chrono::ceil;

SimulatedReceiver::SimulatedReceiver(SimulatedEventLoop& loop) : SimulatedReceiver(loop, Setup()) {}

SimulatedReceiver::SimulatedReceiver(SimulatedEventLoop& loop, Setup setup)
    : loop_(loop),
      setup_(std::move(setup)),
      start_(loop.SteadyNow()),
      receiver_(setup_.Stations, setup_.Receiver, setup_.Log),
      towardsReceiver_(setup_.Receiver.Baud) {}

void SimulatedReceiver::AtHardware(Milliseconds delay, void (SimulatedReceiver::*happening)()) {
  loop_.AtHardware(delay, [this, happening, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) (this->*happening)();
  });
}

void SimulatedReceiver::Unplug() {
  plugged_ = false;
  Close();
}

void SimulatedReceiver::StartSound(receiver::SignalKind kind, int sampleRate) {
  receiver_.StartSound(Now(), kind, sampleRate);
}

std::vector<std::int16_t> SimulatedReceiver::TakeSound() {
  return receiver_.TakeSound(Now());
}

void SimulatedReceiver::SetReceiveThreshold(int bytes) {
  threshold_ = std::max(bytes, 1);
  NotifyIfEnough();
}

base::Result SimulatedReceiver::Open() {
  if (!Exists()) return base::Result::Failed("there is no such device");
  open_ = true;
  ++opens_;
  return base::Result::Done();
}

void SimulatedReceiver::OpenLater(std::function<void(const base::Result& opened)> done) {
  Close();
  loop_.Post([this, done = std::move(done), closings = closings_, alive = std::weak_ptr(alive_)] {
    if (!alive.expired() && closings == closings_) done(Open());
  });
}

void SimulatedReceiver::Close() {
  open_ = false;
  ++closings_;
  input_.clear();
}

std::string SimulatedReceiver::Input() {
  return std::exchange(input_, {});
}

bool SimulatedReceiver::Output(std::string_view bytes) {
  writes_.push_back({loop_.SteadyNow(), std::string(bytes)});
  if (!open_) return false;
  towardsReceiver_.Queue(Now(), bytes);
  AtHardware(ceil<Milliseconds>(towardsReceiver_.FreeAt()) - Now(), &SimulatedReceiver::CommandArrives);
  return true;
}

void SimulatedReceiver::CommandArrives() {
  const std::string bytes = towardsReceiver_.Take(Now());
  if (!plugged_) return;
  receiver_.Receive(Now(), bytes);
  AwaitBytes();
}

void SimulatedReceiver::AwaitBytes() {
  const auto next = receiver_.NextByte();
  if (awaiting_ || !next) return;
  awaiting_ = true;
  const Milliseconds due = std::max(ceil<Milliseconds>(*next), Now());
  // The adapter hands over at fixed moments, whatever has come by then.
  const Milliseconds lump = std::max(setup_.Lump, Milliseconds(1));
  const Milliseconds at = (due + lump - Milliseconds(1)) / lump * lump;
  AtHardware(at - Now(), &SimulatedReceiver::BytesArrive);
}

void SimulatedReceiver::BytesArrive() {
  awaiting_ = false;
  const std::string bytes = receiver_.Send(Now());
  // Nobody keeps what comes while the port is closed.
  if (open_) input_ += bytes;
  NotifyIfEnough();
  AwaitBytes();
}

void SimulatedReceiver::Arrive(std::string_view bytes) {
  if (open_) input_ += bytes;
  NotifyIfEnough();
}

void SimulatedReceiver::NotifyIfEnough() {
  if (!open_ || notifying_ || input_.size() < static_cast<std::size_t>(threshold_)) return;
  notifying_ = true;
  loop_.Post([this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) Notify();
  });
}

void SimulatedReceiver::Notify() {
  notifying_ = false;
  const auto handler = handler_;
  // What was waiting may have been read meanwhile.
  if (open_ && handler && input_.size() >= static_cast<std::size_t>(threshold_)) handler();
}

}  // namespace kestrune::test
