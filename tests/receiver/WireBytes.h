#pragma once

#include <cstddef>
#include <string>

namespace kestrune::test {

/// Bytes typed as characters, zero bytes included.
template <std::size_t size>
std::string Bytes(const char (&text)[size]) {
  return {text, size - 1};
}

}  // namespace kestrune::test
