#include "apps/SoundInput.h"

#include <utility>

#include <fmt/core.h>

#include "platform/alsa/AlsaMixer.h"
#include "platform/alsa/AlsaSource.h"
#include "platform/mixer/NoMixer.h"
#include "platform/pipe/PipeSource.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/pulse/PulseSource.h"
#include "platform/ring/RingListener.h"

namespace kestrune::apps {

namespace {

/// `shares`: whether two sources can have one device open.
template <typename Source, typename... Arguments>
std::unique_ptr<platform::InputListener> ListenerOf(bool shares, const Arguments&... arguments) {
  return std::make_unique<platform::RingListener>(
      [arguments...] { return std::make_unique<Source>(arguments...); }, shares);
}

SoundInput Made(std::unique_ptr<platform::SoundSource> source, std::unique_ptr<platform::Mixer> mixer,
                std::unique_ptr<platform::InputListener> listener) {
  SoundInput input;
  input.Source = std::move(source);
  input.Mixer = std::move(mixer);
  input.Listener = std::move(listener);
  return input;
}

SoundInput FromServer(
    std::unique_ptr<platform::PulseSource> server = std::make_unique<platform::PulseSource>()) {
  return Made(std::move(server), std::make_unique<platform::PulseMixer>(),
              ListenerOf<platform::PulseSource>(true));
}

SoundInput FromAlsa() {
  return Made(std::make_unique<platform::AlsaSource>(), std::make_unique<platform::AlsaMixer>(),
              ListenerOf<platform::AlsaSource>(false));
}

}  // namespace

SoundInput MakeSoundSource(std::string_view choice, std::string_view pipeName) {
  constexpr std::string_view kPipe = "pipe:";
  if (choice == "pulse") return FromServer();
  if (choice == "alsa") return FromAlsa();
  if (choice.size() > kPipe.size() && choice.substr(0, kPipe.size()) == kPipe) {
    const std::string path(choice.substr(kPipe.size()));
    return Made(std::make_unique<platform::PipeSource>(path, std::string(pipeName)),
                std::make_unique<platform::NoMixer>(), ListenerOf<platform::PipeSource>(false, path));
  }
  if (!choice.empty()) {
    SoundInput wrong;
    wrong.Error = fmt::format("unknown sound input \"{}\": it is pulse, alsa or pipe:PATH", choice);
    return wrong;
  }
  auto server = std::make_unique<platform::PulseSource>();
  return server->Reachable() ? FromServer(std::move(server)) : FromAlsa();
}

}  // namespace kestrune::apps
