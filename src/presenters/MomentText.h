#pragma once

#include <string>

#include "base/DatePattern.h"
#include "base/DateValue.h"
#include "base/SameDay.h"

namespace kestrune::presenters {

/// The time of a moment, "21:05"; with the day before it if that is not `now`'s.
[[nodiscard]] inline std::string MomentText(base::DateValue moment, base::DateValue now) {
  return base::FormatDate(moment, base::SameDay(moment, now) ? "hh:nn" : "mmm d, hh:nn");
}

}  // namespace kestrune::presenters
