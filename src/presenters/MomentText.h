#pragma once

#include <string>

#include "base/DatePattern.h"
#include "base/DateValue.h"

namespace kestrune::presenters {

[[nodiscard]] inline bool OnOneDay(base::DateValue one, base::DateValue other) {
  return base::FormatDate(one, "yyyymmdd") == base::FormatDate(other, "yyyymmdd");
}

/// The time of a moment, "21:05"; with the day before it if that is not `now`'s.
[[nodiscard]] inline std::string MomentText(base::DateValue moment, base::DateValue now) {
  return base::FormatDate(moment, OnOneDay(moment, now) ? "hh:nn" : "mmm d, hh:nn");
}

}  // namespace kestrune::presenters
