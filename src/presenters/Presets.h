#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/Sounds.h"
#include "radio/channels/Channels.h"

namespace kestrune::presenters {

/// The texts of the preset buttons in the settings of the unit, by key.
struct PresetKeys {
  /// Empty for a key that is absent.
  std::function<std::string(std::string_view key)> Read;
  std::function<void(std::string_view key, std::string_view text)> Write;
};

/// A preset button as it shows itself.
struct PresetButton {
  /// The stored text unchanged, beginning with its channel's number; empty without a preset.
  std::string Caption;
  std::string Tip;
};

/// The twelve preset buttons of the main window, by index 0 to 11. The now window's buttons and the function
/// keys press them too.
class Presets {
 public:
  static constexpr int kCount = 12;
  /// Key code of the function key that, with Control alone held, presses the first button. The others follow.
  static constexpr int kFirstKeyCode = 112;

  /// All must outlive the object. `getRecordingStatus` returns whether the channel must not be changed.
  Presets(radio::Channels& channels, platform::Sounds& sounds, PresetKeys keys,
          std::function<bool()> getRecordingStatus);

  /// Called for a press of a button without a preset: show the window in which presets are chosen.
  std::function<void()> ShowPresets = [] {};

  /// Asks for a channel; `refused` is called if recording keeps the one that is tuned. Tunes at once unless it is
  /// set.
  std::function<void(std::int16_t channel, std::function<void()> refused)> Tune =
      [this](std::int16_t channel, const std::function<void()>& /*refused*/) {
        channels_.SetChannelNumber(channel);
      };

  /// Fills the buttons from the settings: at the start, and whenever presets were saved.
  void LoadPresets();
  [[nodiscard]] const std::array<PresetButton, kCount>& Buttons() const { return buttons_; }
  /// The number that a button's caption begins with; 0 if it begins with none.
  [[nodiscard]] std::int16_t ChannelOf(int index) const;

  /// A press: tunes the button's channel, with a sound in place of it while recording runs.
  void cmdPresetStation_Click(int index);

  /// Writes a button's text into the settings. LoadPresets shows it.
  void Store(int index, std::string_view text) { keys_.Write(KeyOf(index), text); }
  /// A channel as a button's text names it: number, " - " and station.
  [[nodiscard]] static std::string TextOf(std::int16_t channel, std::string_view station);

  [[nodiscard]] const PresetKeys& Keys() const { return keys_; }
  [[nodiscard]] static std::string KeyOf(int index) { return "Preset" + std::to_string(index + 1); }
  [[nodiscard]] static std::string TipOf(int index);

 private:
  radio::Channels& channels_;
  platform::Sounds& sounds_;
  PresetKeys keys_;
  std::function<bool()> getRecordingStatus_;
  std::array<PresetButton, kCount> buttons_;
};

}  // namespace kestrune::presenters
