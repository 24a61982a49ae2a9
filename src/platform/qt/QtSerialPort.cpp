#include "platform/qt/QtSerialPort.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QString>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <utility>

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "base/Text.h"
#include "platform/posix/SerialDeviceCheck.h"
#include "platform/qt/QtEventLoop.h"

namespace kestrune::platform {
namespace {

// Qt does not report a line that was hung up: reading it just yields nothing.
constexpr std::chrono::milliseconds kHangUpCheck{200};
// A driver takes a few kilobytes, which need seconds on the line.
constexpr std::chrono::milliseconds kSendAgain{20};
constexpr std::size_t kMostWaiting = 4096;

bool HungUp(int handle) {
  pollfd state{handle, 0, 0};
  return ::poll(&state, 1, 0) == 1 && (state.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

struct LineSettings {
  qint32 Speed = 0;
  QSerialPort::Parity Parity = QSerialPort::NoParity;
  QSerialPort::DataBits DataBits = QSerialPort::Data8;
  QSerialPort::StopBits StopBits = QSerialPort::OneStop;
};

/// From the form "9600,n,8,1".
bool ReadSettings(std::string_view text, LineSettings& settings) {
  const std::vector<std::string> parts = base::Split(text, ',');
  if (parts.size() != 4) return false;
  const auto [end, error] =
      std::from_chars(parts[0].data(), parts[0].data() + parts[0].size(), settings.Speed);
  if (error != std::errc{} || settings.Speed <= 0) return false;
  const std::string parity = base::ToLower(parts[1]);
  if (parity == "e") {
    settings.Parity = QSerialPort::EvenParity;
  } else if (parity == "o") {
    settings.Parity = QSerialPort::OddParity;
  } else if (parity != "n") {
    return false;
  }
  if (parts[2] == "7") {
    settings.DataBits = QSerialPort::Data7;
  } else if (parts[2] != "8") {
    return false;
  }
  if (parts[3] == "2") {
    settings.StopBits = QSerialPort::TwoStop;
  } else if (parts[3] != "1") {
    return false;
  }
  return true;
}

}  // namespace

/// Turns an event that was posted to it into a notification. Destroying it removes the connections and the events
/// still posted.
class QtSerialPort::Wakeup final : public QObject {
 public:
  explicit Wakeup(QtSerialPort& port) : port_(port) {}
  /// Qt owns the event from here on.
  void Post() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

 protected:
  void customEvent(QEvent* /*event*/) override { port_.Notify(); }

 private:
  QtSerialPort& port_;
};

QtSerialPort::QtSerialPort(base::EventLoop& loop, PortMap ports)
    : ports_(std::move(ports)),
      wakeup_(std::make_unique<Wakeup>(*this)),
      hangUpCheck_(loop.MakeTimer(kHangUpCheck, [this] { CloseIfDead(); })),
      afterSleep_(loop.MakeTimer(std::chrono::milliseconds(0),
                                 [this] {
                                   afterSleep_->SetEnabled(false);
                                   wakeup_->Post();
                                 })),
      sendAgain_(loop.MakeTimer(kSendAgain, [this] { SendWaiting(); })) {
  QObject::connect(&port_, &QSerialPort::readyRead, wakeup_.get(), [this] { NotifySoon(); });
  QObject::connect(&port_, &QSerialPort::errorOccurred, wakeup_.get(),
                   [this](QSerialPort::SerialPortError error) {
                     switch (error) {
                       case QSerialPort::ResourceError:
                       case QSerialPort::ReadError:
                       case QSerialPort::WriteError:
                       case QSerialPort::DeviceNotFoundError:
                         // Qt is still using the port here, so the next check closes it.
                         dead_ = true;
                         break;
                       default:
                         // A pseudo-terminal has no modem lines; the other errors belong to calls that
                         // return their failure.
                         break;
                     }
                   });
}

QtSerialPort::~QtSerialPort() = default;

void QtSerialPort::SetReceiveThreshold(int bytes) {
  threshold_ = std::max(bytes, 1);
  NotifySoon();
}

bool QtSerialPort::TakeSettings() {
  LineSettings settings;
  return ReadSettings(settings_, settings) && port_.setBaudRate(settings.Speed) &&
         port_.setParity(settings.Parity) && port_.setDataBits(settings.DataBits) &&
         port_.setStopBits(settings.StopBits) && port_.setFlowControl(QSerialPort::NoFlowControl);
}

bool QtSerialPort::Exists() const {
  const std::string device = ports_.Device(number_);
  return !device.empty() && ::access(device.c_str(), F_OK) == 0;
}

base::Result QtSerialPort::Open() {
  Close();
  const std::string device = ports_.Device(number_);
  if (device.empty()) return base::Result::Failed(fmt::format("there is no port {}", number_));
  base::Result possible = CheckSerialDevice(device);
  if (!possible.Ok()) return possible;
  dead_ = false;
  port_.setPortName(QString::fromStdString(device));
  if (!TakeSettings()) {
    return base::Result::Failed(fmt::format("the line settings \"{}\" cannot be used", settings_));
  }
  if (!port_.open(QIODevice::ReadWrite)) {
    return base::Result::Failed(fmt::format("{} cannot be opened: {}{}", device,
                                            port_.errorString().toStdString(), WhoMayHoldSerialDevice()));
  }
  // A pseudo-terminal outlives the program that had it open, and keeps what was not read. A header left over from
  // there would make the next frame's header its length, and no reply would be seen any more.
  base::Ignored(port_.clear(QSerialPort::Input));
  dead_ = false;
  hangUpCheck_->SetEnabled(true);
  return base::Result::Done();
}

void QtSerialPort::Close() {
  hangUpCheck_->SetEnabled(false);
  sendAgain_->SetEnabled(false);
  waiting_.clear();
  port_.close();
}

bool QtSerialPort::IsOpen() const {
  return port_.isOpen() && !dead_ && !HungUp(port_.handle());
}

void QtSerialPort::CloseIfDead() {
  // A device that is plugged in again gets its old number only if no program holds it any more.
  if (port_.isOpen() && !IsOpen()) Close();
}

void QtSerialPort::SetDataTerminalReady(bool on) {
  if (IsOpen()) base::Ignored(port_.setDataTerminalReady(on));
}

void QtSerialPort::SetRequestToSend(bool on) {
  if (IsOpen()) base::Ignored(port_.setRequestToSend(on));
}

std::string QtSerialPort::Input() {
  return port_.isOpen() ? port_.readAll().toStdString() : std::string();
}

bool QtSerialPort::Output(std::string_view bytes) {
  if (!IsOpen() || waiting_.size() > kMostWaiting) return false;
  waiting_ += bytes;
  // The caller may sleep before events run again, and what it wrote must not wait for that.
  SendWaiting();
  return !dead_;
}

// Qt takes a line that is full for one that is gone, so it does not write.
void QtSerialPort::SendWaiting() {
  sendAgain_->SetEnabled(false);
  if (!IsOpen()) return;
  while (!waiting_.empty()) {
    const ssize_t written = ::write(port_.handle(), waiting_.data(), waiting_.size());
    if (written >= 0) {
      waiting_.erase(0, static_cast<std::size_t>(written));
      continue;
    }
    if (errno == EINTR) continue;
    if (errno == EAGAIN) {
      sendAgain_->SetEnabled(true);
    } else {
      dead_ = true;
    }
    return;
  }
}

void QtSerialPort::SetReceiveHandler(std::function<void()> handler) {
  handler_ = std::make_shared<std::function<void()>>(std::move(handler));
}

void QtSerialPort::NotifySoon() {
  // Qt reports bytes only once while the handler of that report is busy. Posted, the handler can run within
  // itself.
  if (notifying_ || !port_.isOpen() || port_.bytesAvailable() < threshold_) return;
  notifying_ = true;
  wakeup_->Post();
}

void QtSerialPort::Notify() {
  // A loop that keeps windows painted still serves events that were posted before it went to sleep.
  if (QtEventLoop::Asleep()) return afterSleep_->SetEnabled(true);
  notifying_ = false;
  const auto handler = handler_;
  const bool enough = port_.isOpen() && port_.bytesAvailable() >= threshold_;
  if (enough && handler && *handler) (*handler)();
}

}  // namespace kestrune::platform
