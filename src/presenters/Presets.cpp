#include "presenters/Presets.h"

#include <cstddef>
#include <utility>

#include <fmt/format.h>

#include "base/Numbers.h"

namespace kestrune::presenters {

Presets::Presets(radio::Channels& channels, platform::Sounds& sounds, PresetKeys keys,
                 std::function<bool()> getRecordingStatus)
    : channels_(channels),
      sounds_(sounds),
      keys_(std::move(keys)),
      getRecordingStatus_(std::move(getRecordingStatus)) {
  for (int i = 0; i < kCount; ++i) buttons_.at(static_cast<std::size_t>(i)).Tip = TipOf(i);
}

void Presets::LoadPresets() {
  for (int i = 0; i < kCount; ++i) buttons_.at(static_cast<std::size_t>(i)).Caption = keys_.Read(KeyOf(i));
}

std::int16_t Presets::ChannelOf(int index) const {
  const std::string& caption = buttons_.at(static_cast<std::size_t>(index)).Caption;
  return base::ToInt16(base::LeadingNumber(caption)).value_or(0);
}

void Presets::cmdPresetStation_Click(int index) {
  if (buttons_.at(static_cast<std::size_t>(index)).Caption.empty()) {
    ShowPresets();
  } else if (getRecordingStatus_()) {
    sounds_.Play("SystemAsterisk");
  } else {
    Tune(ChannelOf(index), [this] { sounds_.Play("SystemAsterisk"); });
  }
}

std::string Presets::TextOf(std::int16_t channel, std::string_view station) {
  return fmt::format("{} - {}", channel, station);
}

std::string Presets::TipOf(int index) {
  return fmt::format("Preset {0} (CTRL-F{0})", index + 1);
}

}  // namespace kestrune::presenters
