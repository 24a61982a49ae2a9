#pragma once

#include "platform/SerialEnumerator.h"

namespace kestrune::radio {

/// Keeps mouse drivers off the serial lines: disables whatever the enumerator takes for a mouse. Without an
/// answer it is disabled too. Nobody learns how it went.
void DisableSerialMouse(platform::SerialEnumerator& enumerator);

}  // namespace kestrune::radio
