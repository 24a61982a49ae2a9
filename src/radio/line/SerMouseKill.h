#pragma once

#include "platform/SerialEnumerator.h"

namespace kestrune::radio {

/// Keeps mouse drivers off the serial lines: disables whatever the enumerator takes for a mouse, also if the
/// enumerator gives no answer. The outcome is not reported.
void DisableSerialMouse(platform::SerialEnumerator& enumerator);

}  // namespace kestrune::radio
