#pragma once

#include <cstdlib>

namespace kestrune::test {

/// How often a soak repeats what it does: `few` times in a normal run, `many` if the variable KESTRUNE_SOAK is set.
inline int Repetitions(int few, int many) {
  return std::getenv("KESTRUNE_SOAK") != nullptr ? many : few;
}

}  // namespace kestrune::test
