#pragma once

#include "platform/Dialogs.h"
#include "platform/InputListener.h"
#include "platform/Mixer.h"
#include "platform/Sounds.h"
#include "recorder/Kestrune.h"
#include "recorder/Windows.h"

namespace kestrune::apps {

/// How the program meets its user: with windows or without.
class Face {
 public:
  virtual ~Face() = default;

  [[nodiscard]] virtual platform::Dialogs& Dialogs() = 0;
  [[nodiscard]] virtual platform::Sounds& Sounds() = 0;
  [[nodiscard]] virtual recorder::Windows& Windows() = 0;
  /// Before the unit loads, and before it goes. `outside` is what the unit stands on; all outlive the face's part in
  /// the run.
  virtual void Attach(recorder::Kestrune& /*unit*/, const recorder::Outside& /*outside*/,
                      platform::Mixer& /*mixer*/, platform::InputListener& /*listener*/) {}
  virtual void Detach() {}
};

}  // namespace kestrune::apps
