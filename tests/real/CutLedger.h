#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kestrune::test {

/// What became of a sound whose frames bear their numbers (low half left, high half right), over the files it
/// was cut into.
struct CutLedger {
  int Files = 0;
  std::int64_t Frames = 0;   ///< with a number that follows the one before
  std::int64_t Last = 0;     ///< the highest number
  std::int64_t Lost = 0;     ///< numbers that are in no file
  std::int64_t Doubled = 0;  ///< frames whose number has come before
  std::int64_t Silent = 0;   ///< frames of silence between two that follow one another: the player was late
  /// The numbers that are in no file: the first, and the one after the last, of each row of them.
  std::vector<std::pair<std::int64_t, std::int64_t>> Missing{};
};

/// Decodes the files and lays them end to end, in the order of their first numbers.
[[nodiscard]] CutLedger ReadCutLedger(const std::vector<std::string>& files);

}  // namespace kestrune::test
