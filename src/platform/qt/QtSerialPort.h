#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "base/EventLoop.h"
#include "platform/SerialPort.h"
#include "platform/posix/FileDescriptor.h"
#include "platform/posix/PortMap.h"

class QSocketNotifier;

namespace kestrune::platform {

/// A serial line served by Qt's loop: real devices and pseudo-terminals, on which modem lines fail silently. The device
/// is opened for this program only. Trying a number without a device costs one look into the file system. What the
/// device received before it was opened is dropped. OpenLater opens on a thread of its own; if the system never lets go
/// of it, so does every later OpenLater fail. From the outer loop the receive handler runs up to 20 ms late, or as late as it is
/// held, with what has come meanwhile.
class QtSerialPort final : public SerialPort {
 public:
  /// The loop must outlive the port, and must be Qt's.
  QtSerialPort(base::EventLoop& loop, PortMap ports);
  ~QtSerialPort() override;
  QtSerialPort(const QtSerialPort&) = delete;
  QtSerialPort& operator=(const QtSerialPort&) = delete;

  void SetCommPort(std::int16_t number) override { number_ = number; }
  void SetSettings(std::string_view settings) override { settings_ = settings; }
  void SetReceiveThreshold(int bytes) override;
  [[nodiscard]] bool Exists() const override;
  [[nodiscard]] std::string Device() const override { return ports_.Device(number_); }
  base::Result Open() override;
  void OpenLater(std::function<void(const base::Result& opened)> done) override;
  void Close() override;
  [[nodiscard]] bool IsOpen() const override;
  void SetDataTerminalReady(bool on) override;
  void SetRequestToSend(bool on) override;
  [[nodiscard]] std::string Input() override;
  [[nodiscard]] bool Output(std::string_view bytes) override;
  void SetReceiveHandler(std::function<void()> handler) override;
  void HoldReceiveHandler(std::chrono::milliseconds time) override;

 private:
  class Wakeup;
  struct Opening;

  [[nodiscard]] base::Result ReasonAgainst(const std::string& device) const;
  void TakeLine(FileDescriptor line);
  void TakeOpening();
  void Receive();
  void Gather(std::chrono::milliseconds time);
  void ReceiveGathered();
  void NotifySoon();
  void Notify();
  /// Takes no more of the line, and gives it up soon.
  void Die();
  void CloseIfDead();
  void SendWaiting();

  base::EventLoop& loop_;
  PortMap ports_;
  FileDescriptor line_;
  std::unique_ptr<QSocketNotifier> readable_;  // null while closed or dead
  std::unique_ptr<Wakeup> wakeup_;
  std::unique_ptr<base::Timer> hangUpCheck_;
  std::unique_ptr<base::Timer> afterSleep_;
  std::unique_ptr<base::Timer> gather_;  // while it runs, bytes do not wake the program
  std::unique_ptr<base::Timer> sendAgain_;
  std::shared_ptr<std::function<void()>> handler_;
  std::shared_ptr<Opening> opening_;                        // the one that is awaited
  std::weak_ptr<Opening> lastOpening_;                      // alive as long as its thread is
  std::function<void(const base::Result& opened)> opened_;  // for the one that is awaited
  std::string received_;                                    // and not yet handed over
  std::string waiting_;                                     // bytes that the line has not taken yet
  std::string settings_ = "9600,n,8,1";
  std::int16_t number_ = 0;
  int threshold_ = 1;
  bool dead_ = false;
  bool notifying_ = false;
};

}  // namespace kestrune::platform
