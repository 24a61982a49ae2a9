#include "apps/SoundInput.h"

#include <utility>

#include <fmt/core.h>

#include "platform/alsa/AlsaSource.h"
#include "platform/pipe/PipeSource.h"
#include "platform/pulse/PulseSource.h"

namespace kestrune::apps {

SoundInput MakeSoundSource(std::string_view choice) {
  constexpr std::string_view kPipe = "pipe:";
  if (choice == "pulse") return {std::make_unique<platform::PulseSource>(), {}};
  if (choice == "alsa") return {std::make_unique<platform::AlsaSource>(), {}};
  if (choice.size() > kPipe.size() && choice.substr(0, kPipe.size()) == kPipe) {
    return {std::make_unique<platform::PipeSource>(std::string(choice.substr(kPipe.size()))), {}};
  }
  if (!choice.empty()) {
    return {nullptr, fmt::format("unknown sound input \"{}\": it is pulse, alsa or pipe:PATH", choice)};
  }
  auto server = std::make_unique<platform::PulseSource>();
  if (server->Reachable()) return {std::move(server), {}};
  return {std::make_unique<platform::AlsaSource>(), {}};
}

}  // namespace kestrune::apps
