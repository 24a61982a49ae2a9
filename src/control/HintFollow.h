#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "control/ReportJson.h"

namespace kestrune::control {

/// Says what is new in the unit's answers to `hints`, so that each hint is said once.
class HintFollow {
 public:
  explicit HintFollow(bool json) : json_(json) {}

  /// The hints of an answer that were not said before, oldest first, a line each: for people, or as JSON. Nothing if the
  /// answer does not have the shape of one.
  [[nodiscard]] std::optional<std::string> NewIn(const control::Json& answer);

 private:
  bool json_;
  std::int64_t said_ = 0;  // the number of the last one
};

}  // namespace kestrune::control
