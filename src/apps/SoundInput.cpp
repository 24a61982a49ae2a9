#include "apps/SoundInput.h"

#include <utility>

#include <fmt/core.h>

#include "platform/alsa/AlsaMixer.h"
#include "platform/alsa/AlsaSource.h"
#include "platform/mixer/NoMixer.h"
#include "platform/pipe/PipeSource.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/pulse/PulseSource.h"

namespace kestrune::apps {

namespace {

SoundInput FromServer(
    std::unique_ptr<platform::PulseSource> server = std::make_unique<platform::PulseSource>()) {
  return {std::move(server), std::make_unique<platform::PulseMixer>(), {}};
}

SoundInput FromAlsa() {
  return {std::make_unique<platform::AlsaSource>(), std::make_unique<platform::AlsaMixer>(), {}};
}

}  // namespace

SoundInput MakeSoundSource(std::string_view choice) {
  constexpr std::string_view kPipe = "pipe:";
  if (choice == "pulse") return FromServer();
  if (choice == "alsa") return FromAlsa();
  if (choice.size() > kPipe.size() && choice.substr(0, kPipe.size()) == kPipe) {
    return {std::make_unique<platform::PipeSource>(std::string(choice.substr(kPipe.size()))),
            std::make_unique<platform::NoMixer>(),
            {}};
  }
  if (!choice.empty()) {
    return {nullptr, nullptr,
            fmt::format("unknown sound input \"{}\": it is pulse, alsa or pipe:PATH", choice)};
  }
  auto server = std::make_unique<platform::PulseSource>();
  return server->Reachable() ? FromServer(std::move(server)) : FromAlsa();
}

}  // namespace kestrune::apps
