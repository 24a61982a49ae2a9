#pragma once

#include <string>

#include "cut/LagModel.h"

namespace kestrune::presenters {

/// What was learned of a channel, in one line: "Text 1.2 s ahead of the sound, learned from 34 changes".
[[nodiscard]] std::string LagTip(const cut::LagModel& learned);

}  // namespace kestrune::presenters
