#include "platform/pulse/PulseMixer.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include <pulse/channelmap.h>
#include <pulse/volume.h>

#include "platform/pulse/PulseServerSource.h"
#include "platform/pulse/PulseSourceControl.h"

namespace kestrune::platform {
namespace {

/// An amplified volume is shown as the unamplified one.
std::int32_t FromServer(pa_volume_t volume) {
  const double part = static_cast<double>(volume) / PA_VOLUME_NORM;
  return static_cast<std::int32_t>(std::lround(std::min(part, 1.0) * Mixer::kMaxVolume));
}

pa_volume_t ToServer(std::int32_t volume) {
  return static_cast<pa_volume_t>(
      std::lround(static_cast<double>(volume) / Mixer::kMaxVolume * PA_VOLUME_NORM));
}

}  // namespace

PulseMixer::PulseMixer(const std::string& server) : PulseMixer(std::make_unique<PulseServerSource>(server)) {}

PulseMixer::PulseMixer(std::unique_ptr<PulseSourceControl> source) : source_(std::move(source)) {}

PulseMixer::~PulseMixer() = default;

void PulseMixer::Open(const std::string& device) {
  balance_ = 0;
  source_->Open(device);
  Read();
}

void PulseMixer::Close() {
  source_->Close();
  SetLines({});
}

bool PulseMixer::Update() {
  if (!source_->Update()) return false;
  Read();
  return true;
}

void PulseMixer::Read() {
  const auto& state = source_->State();
  if (!state) {
    SetLines({});
    return;
  }
  const pa_volume_t loudest = pa_cvolume_max(&state->Volume);
  const bool hasBalance = pa_channel_map_can_balance(&state->Channels) != 0;
  if (hasBalance && loudest > PA_VOLUME_MUTED)
    balance_ = pa_cvolume_get_balance(&state->Volume, &state->Channels);

  MixerLine active{.Name = state->Description,
                   .HasVolume = true,
                   .Volume = FromServer(loudest),
                   .HasBalance = hasBalance,
                   .Balance = static_cast<std::int16_t>(std::lround((balance_ + 1) * kMiddle)),
                   .CanSelect = true,
                   .Selected = !state->Muted};
  if (state->Ports.empty()) {
    SetLines({std::move(active)});
    return;
  }
  std::vector<MixerLine> lines;
  for (const PulsePort& port : state->Ports) {
    MixerLine line;
    line.CanSelect = true;
    if (port.Name == state->ActivePort) line = active;
    line.Name = port.Description;
    lines.push_back(std::move(line));
  }
  SetLines(std::move(lines));
}

void PulseMixer::WriteVolume(std::size_t /*line*/, std::int32_t volume) {
  const auto& state = source_->State();
  if (!state) return;
  pa_cvolume channels = state->Volume;
  if (pa_cvolume_max(&channels) > PA_VOLUME_MUTED) {
    pa_cvolume_scale(&channels, ToServer(volume));
  } else {
    pa_cvolume_set(&channels, channels.channels, ToServer(volume));
    pa_cvolume_set_balance(&channels, &state->Channels, balance_);
  }
  source_->SetVolume(channels);
  Read();
}

void PulseMixer::WriteBalance(std::size_t /*line*/, std::int16_t balance) {
  const auto& state = source_->State();
  if (!state) return;
  balance_ = static_cast<float>(balance) / kMiddle - 1;
  pa_cvolume channels = state->Volume;
  pa_cvolume_set_balance(&channels, &state->Channels, balance_);
  source_->SetVolume(channels);
  Read();
}

void PulseMixer::WriteSelected(std::size_t line, bool selected) {
  const auto& state = source_->State();
  if (!state) return;
  const std::string port = state->Ports.empty() ? std::string() : state->Ports[line].Name;
  const bool active = port == state->ActivePort;
  if (selected) {
    const bool muted = state->Muted;
    if (!active) source_->SetPort(port);
    if (muted) source_->SetMute(false);
  } else if (active) {
    source_->SetMute(true);
  }
  Read();
}

}  // namespace kestrune::platform
