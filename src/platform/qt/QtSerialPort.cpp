#include "platform/qt/QtSerialPort.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QSocketNotifier>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/posix/SerialLine.h"
#include "platform/qt/QtEventLoop.h"

namespace kestrune::platform {
namespace {

// A line that was hung up is not always reported before it is read.
constexpr std::chrono::milliseconds kHangUpCheck{1000};
// A line brings a few bytes every few milliseconds, as adapters on the bus do too; what comes so soon after the first of them
// is read with them. Each waking of the program costs more than the bytes.
constexpr std::chrono::milliseconds kGather{20};
// A driver takes a few kilobytes, which need seconds on the line.
constexpr std::chrono::milliseconds kSendAgain{20};
constexpr std::size_t kMostWaiting = 4096;

constexpr QEvent::Type kNotify = QEvent::User;
constexpr auto kOpened = static_cast<QEvent::Type>(QEvent::User + 1);

}  // namespace

/// Turns an event that was posted to it into a call. Destroying it removes the connections and the events still posted.
class QtSerialPort::Wakeup final : public QObject {
 public:
  explicit Wakeup(QtSerialPort& port) : port_(port) {}
  /// Qt owns the event from here on. Any thread may post.
  void Post(QEvent::Type type) { QCoreApplication::postEvent(this, new QEvent(type)); }

 protected:
  void customEvent(QEvent* event) override {
    // A loop that keeps windows painted still serves events that were posted before it went to sleep.
    if (QtEventLoop::Asleep()) return port_.afterSleep_->SetEnabled(true);
    if (event->type() == kNotify) port_.Notify();
    if (event->type() == kOpened) port_.TakeOpening();
  }

 private:
  QtSerialPort& port_;
};

/// What the thread that opens a device and its port share.
struct QtSerialPort::Opening {
  std::mutex Lock;
  Wakeup* Awaiting = nullptr;  ///< null: nobody any more
  OpenedLine Opened;           ///< once the thread has posted
};

QtSerialPort::QtSerialPort(base::EventLoop& loop, PortMap ports)
    : loop_(loop),
      ports_(std::move(ports)),
      wakeup_(std::make_unique<Wakeup>(*this)),
      hangUpCheck_(loop.MakeTimer(kHangUpCheck, [this] { CloseIfDead(); })),
      afterSleep_(loop.MakeTimer(std::chrono::milliseconds(0),
                                 [this] {
                                   afterSleep_->SetEnabled(false);
                                   wakeup_->Post(kNotify);
                                   wakeup_->Post(kOpened);
                                 })),
      gather_(loop.MakeTimer(kGather, [this] { ReceiveGathered(); })),
      sendAgain_(loop.MakeTimer(kSendAgain, [this] { SendWaiting(); })) {}

QtSerialPort::~QtSerialPort() {
  Close();
}

void QtSerialPort::SetReceiveThreshold(int bytes) {
  threshold_ = std::max(bytes, 1);
  NotifySoon();
}

bool QtSerialPort::Exists() const {
  const std::string device = ports_.Device(number_);
  return !device.empty() && ::access(device.c_str(), F_OK) == 0;
}

base::Result QtSerialPort::Open() {
  Close();
  const std::string device = ports_.Device(number_);
  if (device.empty()) return base::Result::Failed(fmt::format("there is no port {}", number_));
  OpenedLine opened = OpenSerialLine(device, settings_);
  if (opened.Outcome.Ok()) TakeLine(std::move(opened.Line));
  return opened.Outcome;
}

void QtSerialPort::OpenLater(std::function<void(const base::Result& opened)> done) {
  Close();
  const bool hangs = !lastOpening_.expired();
  opened_ = std::move(done);
  opening_ = std::make_shared<Opening>();
  const std::string device = ports_.Device(number_);
  if (device.empty() || hangs) {
    opening_->Opened.Outcome =
        base::Result::Failed(device.empty() ? fmt::format("there is no port {}", number_)
                                            : "the system is still opening a device");
    return wakeup_->Post(kOpened);
  }
  opening_->Awaiting = wakeup_.get();
  lastOpening_ = opening_;
  std::thread([opening = opening_, device, settings = settings_]() mutable {
    OpenedLine opened = OpenSerialLine(device, settings);
    const std::lock_guard lock(opening->Lock);
    if (opening->Awaiting == nullptr) return CloseSerialLine(opened.Line);
    opening->Opened = std::move(opened);
    opening->Awaiting->Post(kOpened);
  }).detach();
}

void QtSerialPort::TakeOpening() {
  if (opening_ == nullptr) return;
  {
    const std::lock_guard lock(opening_->Lock);
    // Posted for an opening that was given up.
    if (opening_->Opened.Outcome.Ok() && !opening_->Opened.Line.IsOpen()) return;
  }
  const std::shared_ptr<Opening> opening = std::exchange(opening_, nullptr);
  const auto done = std::exchange(opened_, nullptr);
  const base::Result outcome = opening->Opened.Outcome;
  if (outcome.Ok()) TakeLine(std::move(opening->Opened.Line));
  done(outcome);
}

void QtSerialPort::TakeLine(FileDescriptor line) {
  line_ = std::move(line);
  dead_ = false;
  readable_ = std::make_unique<QSocketNotifier>(line_.Number(), QSocketNotifier::Read);
  QObject::connect(readable_.get(), &QSocketNotifier::activated, wakeup_.get(), [this] {
    // Whoever pumps waits for it.
    if (loop_.Pumping()) return ReceiveGathered();
    Gather(kGather);
  });
  hangUpCheck_->SetInterval(kHangUpCheck);
  hangUpCheck_->SetEnabled(true);
}

void QtSerialPort::Close() {
  if (opening_ != nullptr) {
    const std::lock_guard lock(opening_->Lock);
    opening_->Awaiting = nullptr;
    CloseSerialLine(opening_->Opened.Line);
  }
  opening_ = nullptr;
  opened_ = nullptr;
  hangUpCheck_->SetEnabled(false);
  gather_->SetEnabled(false);
  sendAgain_->SetEnabled(false);
  waiting_.clear();
  received_.clear();
  // The notifier may be the one that is calling.
  if (readable_ != nullptr) {
    readable_->setEnabled(false);
    readable_.release()->deleteLater();
  }
  CloseSerialLine(line_);
}

bool QtSerialPort::IsOpen() const {
  return line_.IsOpen() && !dead_ && !HungUp(line_);
}

void QtSerialPort::CloseIfDead() {
  // A device that is plugged in again gets its old number only if no program holds it any more.
  if (line_.IsOpen() && !IsOpen()) Close();
}

void QtSerialPort::SetDataTerminalReady(bool on) {
  if (IsOpen()) SetModemLines(line_, TIOCM_DTR, on);
}

void QtSerialPort::SetRequestToSend(bool on) {
  if (IsOpen()) SetModemLines(line_, TIOCM_RTS, on);
}

void QtSerialPort::Receive() {
  if (!line_.IsOpen() || dead_) return;
  LineInput input = ReadSerialLine(line_);
  received_ += input.Bytes;
  if (input.Dead) Die();
}

void QtSerialPort::Die() {
  dead_ = true;
  // A dead line is readable for ever.
  readable_->setEnabled(false);
  hangUpCheck_->SetInterval(std::chrono::milliseconds(0));
}

void QtSerialPort::Gather(std::chrono::milliseconds time) {
  readable_->setEnabled(false);
  gather_->SetInterval(time);
  gather_->SetEnabled(true);
}

void QtSerialPort::HoldReceiveHandler(std::chrono::milliseconds time) {
  if (readable_ != nullptr && !dead_) Gather(time);
}

void QtSerialPort::ReceiveGathered() {
  gather_->SetEnabled(false);
  readable_->setEnabled(true);
  Receive();
  NotifySoon();
}

std::string QtSerialPort::Input() {
  Receive();
  return std::exchange(received_, {});
}

bool QtSerialPort::Output(std::string_view bytes) {
  if (!IsOpen() || waiting_.size() > kMostWaiting) return false;
  waiting_ += bytes;
  // The caller may sleep before events run again, and what it wrote must not wait for that.
  SendWaiting();
  return !dead_;
}

void QtSerialPort::SendWaiting() {
  sendAgain_->SetEnabled(false);
  if (!IsOpen()) return;
  while (!waiting_.empty()) {
    const ssize_t written = ::write(line_.Number(), waiting_.data(), waiting_.size());
    if (written >= 0) {
      waiting_.erase(0, static_cast<std::size_t>(written));
      continue;
    }
    if (errno == EINTR) continue;
    if (errno == EAGAIN) {
      sendAgain_->SetEnabled(true);
    } else {
      Die();
    }
    return;
  }
}

void QtSerialPort::SetReceiveHandler(std::function<void()> handler) {
  handler_ = std::make_shared<std::function<void()>>(std::move(handler));
}

void QtSerialPort::NotifySoon() {
  // The handler runs from an event of its own, so that it can run within itself.
  if (notifying_ || received_.size() < static_cast<std::size_t>(threshold_)) return;
  notifying_ = true;
  wakeup_->Post(kNotify);
}

void QtSerialPort::Notify() {
  notifying_ = false;
  const auto handler = handler_;
  const bool enough = line_.IsOpen() && received_.size() >= static_cast<std::size_t>(threshold_);
  if (enough && handler && *handler) (*handler)();
}

}  // namespace kestrune::platform
