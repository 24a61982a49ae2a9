#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/CaptureFile.h"

namespace kestrune::test {

/// Tones that glide and swell, different on both channels, the same on every run.
std::vector<std::int16_t> MakeMusic(std::size_t frames, std::int32_t rate, std::int16_t channels);
/// Steady tones of these frequencies, equally loud, the same on all channels.
std::vector<std::int16_t> MakeTones(std::size_t frames, std::int32_t rate, std::int16_t channels,
                                    std::span<const double> frequencies);
/// Silence with a hard click now and then, on the channels in turn.
std::vector<std::int16_t> MakeClicks(std::size_t frames, std::int32_t rate, std::int16_t channels);
/// White noise with a seed.
std::vector<std::int16_t> MakeNoise(std::size_t samples, unsigned seed);

/// Loudness of a frequency in dB below full scale, of one channel.
double ToneLevel(std::span<const std::int16_t> samples, std::int16_t channels, std::int32_t rate,
                 double frequency);
/// Signal to noise of what was decoded, in dB; below 0 if it is another sound or not at its place.
double SignalToNoise(std::span<const std::int16_t> input, std::span<const std::int16_t> decoded);

/// Hands the samples over as the recorder does: in blocks of 100 ms, the part block last. False if one fails.
bool WriteBlocks(platform::CaptureFile& file, std::span<const std::int16_t> samples);

}  // namespace kestrune::test
