#pragma once

#include <cstdint>

#include <lame/lame.h>

#include "platform/Mp3Parameters.h"

namespace kestrune::platform {

/// Tells LAME every parameter, before its lame_init_params. kCreated, or a negative result if one lies
/// outside what MPEG layer III or LAME knows; nothing is replaced by a neighbouring value.
///
/// Where the parameters leave room:
/// - Bitrate is the constant bitrate, or the minimum of a variable one if VBREnforceMinBitRate asks for it.
///   VBRMaxBitrate 0 means no limit. Limits need not stand in MPEG's table; one bitrate of it must lie
///   between them. A target outside them is drawn to them.
/// - VBRCodingMethod 0, 2 and 3 are one method: LAME's default, and its newer one, is mtrh.
/// - A filter of frequency 0 is one that LAME chooses; -1 switches it off, LAME's own choice included. A
/// width
///   of -1 is LAME's choice.
/// - TypeStereo 0 is LAME's choice, joint stereo.
/// - LAME couples the block types of the channels in simple and joint stereo whatever it is told;
///   DifferentBlockTypes shows in dual channel.
/// - Of ATHControl, LAME 3.100 heeds 2 alone; 1 and 3 reach it and change nothing.
[[nodiscard]] std::int16_t ApplyMp3Parameters(lame_global_flags* lame, const Mp3Parameters& parameters);

}  // namespace kestrune::platform
