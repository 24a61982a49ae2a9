#pragma once

#include <chrono>

#include "radio/line/LinkState.h"

namespace kestrune::radio {

/// Whom the link serves. All calls come on the main thread; those that report come from the outer loop, inside no wait,
/// tick or reply, and the link may be asked anything within them.
class LinkOwner {
 public:
  virtual ~LinkOwner() = default;

  [[nodiscard]] virtual LinkOrders Orders() const = 0;

  /// The radio can no longer be used. Once an outage, whatever else becomes known of it.
  virtual void RadioLost(const LinkStatus& status) = 0;
  /// It can be used again: powered on, and sent its channel and its mute, which are repeated if it has not confirmed
  /// them. The port may be another one than before. `away` is the length of the outage.
  virtual void RadioFound(const LinkStatus& status, std::chrono::milliseconds away) = 0;
  /// Something in the status is different from before; also with each of the calls above, after them. Without them, it is
  /// up again also because `Watch` has been switched off.
  virtual void LinkChanged(const LinkStatus& status) = 0;
};

}  // namespace kestrune::radio
