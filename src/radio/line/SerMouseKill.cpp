#include "radio/line/SerMouseKill.h"

#include "base/Text.h"

namespace kestrune::radio {

void DisableSerialMouse(platform::SerialEnumerator& enumerator) {
  if (!base::ContainsNoCase(enumerator.MouseStatus().value_or(""), "No matching")) enumerator.DisableMouse();
}

}  // namespace kestrune::radio
