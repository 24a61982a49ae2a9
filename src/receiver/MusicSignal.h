#pragma once

#include <memory>

#include "receiver/SongSignal.h"

namespace kestrune::receiver {

/// A band a song, joined to the next as the line-up says. The lowest bits of the samples number the frames.
[[nodiscard]] std::unique_ptr<SongSignal> MakeMusicSignal(int sampleRate);

}  // namespace kestrune::receiver
