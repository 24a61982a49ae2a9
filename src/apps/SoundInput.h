#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/InputListener.h"
#include "platform/Mixer.h"
#include "platform/SoundSource.h"

namespace kestrune::apps {

struct SoundInput {
  std::unique_ptr<platform::SoundSource> Source;      ///< null if the choice is not valid
  std::unique_ptr<platform::Mixer> Mixer;             ///< the mixer that goes with it; null if the source is
  std::unique_ptr<platform::InputListener> Listener;  ///< likewise, for inputs that are tried
  std::string Error;                                  ///< why the choice is not valid, for people
};

/// Where sound comes from, by the text of the option --audio: "pulse", "alsa" or "pipe:PATH". An empty text
/// takes a sound server if one answers, and ALSA if not; finding out may take 5 s. A pipe is shown as `pipeName`, or as its
/// path if that is empty.
[[nodiscard]] SoundInput MakeSoundSource(std::string_view choice, std::string_view pipeName = {});

}  // namespace kestrune::apps
