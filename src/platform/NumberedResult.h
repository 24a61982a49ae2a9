#pragma once

#include <cstdint>
#include <string>

namespace kestrune::platform {

/// How a step of the sound library went: the number by which the log names it, and what it means.
struct [[nodiscard]] NumberedResult {
  std::int16_t Number = 0;  ///< 0 or more: done; negative: failed
  std::string Cause;        ///< one line in words, without a full stop; empty exactly if the step was done

  [[nodiscard]] bool Ok() const { return Number >= 0; }
  explicit operator bool() const { return Ok(); }
  bool operator==(const NumberedResult&) const = default;
};

}  // namespace kestrune::platform
