#pragma once

#include <chrono>
#include <string>

namespace kestrune::platform {

/// Who started the program as a service and looks after it, as far as it wants to be told how the program does. Where
/// nobody does, nothing happens. The main thread calls, and no call waits.
class ServiceManager {
 public:
  /// What is told at once.
  struct News {
    bool Ready = false;     ///< the start is over
    bool Stopping = false;  ///< the end has begun
    bool Alive = false;     ///< the program's loop turns
    /// The start or the end takes at least so much longer, from now on; 0 says nothing.
    std::chrono::seconds MoreTime{0};
    /// What the program does, one line for people; empty says nothing.
    std::string Status{};
  };

  virtual ~ServiceManager() = default;

  /// Whether anybody listens.
  [[nodiscard]] virtual bool Listens() const = 0;
  /// After so long without Alive the program is taken for stuck, and ended; 0 if nobody watches.
  [[nodiscard]] virtual std::chrono::milliseconds Patience() const = 0;
  /// False if the news did not get there, so that what matters has to be told again. A line end in the status, and every
  /// other control character, reaches nobody as such.
  [[nodiscard]] virtual bool Tell(const News& news) = 0;
};

}  // namespace kestrune::platform
