#pragma once

#include "platform/Dialogs.h"
#include "platform/Environment.h"
#include "platform/Files.h"
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
  /// What else of the outside windows work on; it outlives the face.
  struct Parts {
    platform::Files& Files;
    const platform::Environment& Environment;
    platform::Mixer& Mixer;
  };
  /// Before the unit loads, and before it goes.
  virtual void Attach(recorder::Kestrune& /*unit*/, const Parts& /*parts*/) {}
  virtual void Detach() {}
};

}  // namespace kestrune::apps
