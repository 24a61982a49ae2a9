#include "platform/qt/SignalWatch.h"

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include "base/Ignored.h"

namespace kestrune::platform {
namespace {

constexpr std::array<int, 2> kSignals = {SIGTERM, SIGINT};

// A signal handler can reach only globals. It writes to the first end, and the loop reads from the second.
std::array<int, 2> signalSockets = {-1, -1};

void Forward(int signal) {
  const int savedError = errno;
  const char number = static_cast<char>(signal);
  base::Ignored(::write(signalSockets[0], &number, 1));
  errno = savedError;
}

}  // namespace

struct SignalWatch::PreviousActions {
  std::array<struct sigaction, kSignals.size()> Actions{};
};

SignalWatch::SignalWatch(std::function<void(int)> handler)
    : handler_(std::move(handler)), previous_(std::make_unique<PreviousActions>()) {
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, signalSockets.data()) != 0) return;
  notifier_ = std::make_unique<QSocketNotifier>(signalSockets[1], QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { ReadSignals(); });
  struct sigaction action {};
  action.sa_handler = Forward;
  action.sa_flags = SA_RESTART;
  ::sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    base::Ignored(::sigaction(kSignals.at(i), &action, &previous_->Actions.at(i)));
  }
}

SignalWatch::~SignalWatch() {
  if (notifier_ == nullptr) return;
  for (std::size_t i = 0; i < kSignals.size(); ++i) {
    base::Ignored(::sigaction(kSignals.at(i), &previous_->Actions.at(i), nullptr));
  }
  notifier_.reset();
  for (int& socket : signalSockets) ::close(std::exchange(socket, -1));
}

void SignalWatch::ReadSignals() {
  // One signal for each call: the handler may pump events, and may even destroy this object.
  char number = 0;
  if (::read(signalSockets[1], &number, 1) != 1) return;
  const auto handler = handler_;
  if (handler) handler(number);
}

}  // namespace kestrune::platform
