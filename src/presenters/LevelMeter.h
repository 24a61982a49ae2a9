#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/PcmFormat.h"

namespace kestrune::presenters {

/// How AudioDisplay draws the sound; a button of the main window goes from one to the next.
enum class VuType : std::uint8_t {
  Bars,      ///< a bar for each channel, with a mark at its recent peak
  Needles,   ///< a needle for each channel that moves as slowly as the ear judges loudness
  Wave,      ///< the waveform
  Spectrum,  ///< a bar for each third of an octave
  History,   ///< the loudness of the last half minute
};
inline constexpr int kVuTypes = 5;

/// What the level display shows, computed from the newest samples ten times a second. All heights are from 0 to 1;
/// levels are decibels on that scale, from -60 dB to full scale.
class LevelMeter {
 public:
  static constexpr float kFloorDecibels = -60;
  static constexpr std::size_t kWindow = 2048;  ///< frames of the spectrum
  static constexpr std::size_t kWaveColumns = 256;
  static constexpr std::size_t kBands = 24;
  static constexpr std::size_t kHistory = 300;  ///< steps of a tenth of a second

  struct Channel {
    float Peak = 0;    ///< of the last tenth of a second
    float Hold = 0;    ///< the highest peak of the last 1.5 s, then falling
    float Needle = 0;  ///< mean power, smoothed
    bool Clipped = false;
    int HoldSteps = 0;
  };
  struct Column {
    float Low = 0;  ///< -1 to 1
    float High = 0;
  };

  /// How many samples Draw takes; 0 while nothing is displayed, and then nothing is drawn.
  [[nodiscard]] std::int32_t SampleCount() const { return sampleCount_; }
  void SetSampleCount(std::int32_t count) { sampleCount_ = count; }

  [[nodiscard]] VuType Type() const { return type_; }
  /// The wave and the bands begin empty.
  void NextType();

  /// Takes the newest samples, interleaved; once every tenth of a second.
  void Draw(std::span<const std::int16_t> samples, const platform::PcmFormat& format);
  /// Increases with each Draw, so that a window knows whether there is something new.
  [[nodiscard]] std::uint32_t Draws() const { return draws_; }

  // The levels and their history are kept for every type; the wave and the bands are computed only while they are shown,
  // as they cost more than all the rest.

  /// 1 or 2.
  [[nodiscard]] std::size_t ChannelCount() const { return channelCount_; }
  [[nodiscard]] const std::array<Channel, 2>& Channels() const { return channels_; }
  [[nodiscard]] const std::array<Column, kWaveColumns>& Wave() const { return wave_; }
  [[nodiscard]] const std::array<float, kBands>& Bands() const { return bands_; }
  /// Loudness step by step, the newest last.
  [[nodiscard]] std::span<const float> History() const { return history_; }

 private:
  void Measure(std::span<const std::int16_t> samples);
  void DrawWave(std::span<const std::int16_t> samples);
  void DrawBands(std::span<const std::int16_t> samples, std::int32_t rate);

  VuType type_ = VuType::Bars;
  std::int32_t sampleCount_ = 0;
  std::uint32_t draws_ = 0;
  std::size_t channelCount_ = 2;
  std::array<Channel, 2> channels_;
  std::array<Column, kWaveColumns> wave_;
  std::array<float, kBands> bands_{};
  std::array<float, kHistory> history_{};
};

}  // namespace kestrune::presenters
