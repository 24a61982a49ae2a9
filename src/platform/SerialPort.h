#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/Result.h"

namespace kestrune::platform {

/// A serial line, used by the radio session from the main thread.
///
/// 1. Settings are taken over by the next Open; setting them on an open port changes only the threshold.
/// 2. The receive handler runs from the event loop, never from within a call of this interface, whenever at
///    least the threshold of bytes is waiting to be read.
/// 3. A line that dies (unplugged, the other end closed) reads as closed from then on; writes to it are dropped.
/// 4. A line that cannot take bytes for a while stays open. What was written waits and goes out in its order.
class SerialPort {
 public:
  virtual ~SerialPort() = default;

  /// Number of the port, 1 to 16; which device that is, is the adapter's matter.
  virtual void SetCommPort(std::int16_t number) = 0;
  /// Speed, parity, data bits and stop bits, as "9600,n,8,1".
  virtual void SetSettings(std::string_view settings) = 0;
  /// Bytes that trigger the receive handler, at least 1.
  virtual void SetReceiveThreshold(int bytes) = 0;

  /// Whether there is a device with the number set last; it may be one that cannot be opened.
  [[nodiscard]] virtual bool Exists() const = 0;
  /// The name under which a user knows the device with the number set last, such as "/dev/ttyUSB0"; empty if the
  /// number means none.
  [[nodiscard]] virtual std::string Device() const = 0;
  /// The cause says what to do about a failure: the group to join, the process that holds the device.
  virtual base::Result Open() = 0;
  /// The same without holding up the caller, however long the system takes: a broken adapter can keep an opening
  /// program waiting for seconds. The port reads as closed until `done` runs, from the event loop; it does not run at all
  /// if Close or another opening comes first.
  virtual void OpenLater(std::function<void(const base::Result& opened)> done) = 0;
  virtual void Close() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;

  virtual void SetDataTerminalReady(bool on) = 0;
  virtual void SetRequestToSend(bool on) = 0;

  /// All that has been received and not yet read; empty if nothing. Zero bytes are kept.
  [[nodiscard]] virtual std::string Input() = 0;
  /// Queues the bytes for sending. False, and nothing queued, if the port is closed or has died, or if more than
  /// a few kilobytes wait already.
  [[nodiscard]] virtual bool Output(std::string_view bytes) = 0;

  virtual void SetReceiveHandler(std::function<void()> handler) = 0;
  /// What comes within this time is of no use yet, so that the handler may wait that long, once; a new time takes the
  /// place of one that runs. A port need not make use of it.
  virtual void HoldReceiveHandler(std::chrono::milliseconds /*time*/) {}
};

}  // namespace kestrune::platform
