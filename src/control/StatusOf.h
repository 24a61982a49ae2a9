#pragma once

#include "control/Reports.h"
#include "recorder/Snapshot.h"

namespace kestrune::control {

/// What a unit reports about itself, from the same snapshot from which its windows show themselves.
[[nodiscard]] StatusReport StatusOf(const recorder::Snapshot& unit);

}  // namespace kestrune::control
