#pragma once

#include <cstdint>

#include <lame/lame.h>

#include "platform/Mp3Parameters.h"

namespace kestrune::platform {

/// Hands every parameter to LAME, before its lame_init_params. The bitrates must be those of
/// WithRealBitrates. Returns kCreated, or a negative result if another parameter lies outside what MPEG layer
/// III or LAME knows.
///
/// Where the parameters leave room:
/// - Bitrate is the constant bitrate, or the minimum of a variable one if VBREnforceMinBitRate asks for it.
/// - VBRCodingMethod 0, 2 and 3 are one method: LAME's default, and its newer one, is mtrh.
/// - LAME chooses a filter of frequency 0; -1 switches the filter off, LAME's own choice included. LAME also
///   chooses a width of -1.
/// - TypeStereo 0 is LAME's choice, joint stereo.
/// - In simple and joint stereo LAME always couples the block types of the channels; DifferentBlockTypes has
///   an effect in dual channel only.
/// - Of ATHControl, LAME 3.100 acts on 2 alone; it accepts 1 and 3, and they change nothing.
[[nodiscard]] std::int16_t ApplyMp3Parameters(lame_global_flags* lame, const Mp3Parameters& parameters);

}  // namespace kestrune::platform
