// Bytes from the line in pieces of any size: the reader must cut them as a plain reading of its rules does
// and account for every byte, and the session and the channel table behind it must survive whatever they say.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ReceivePath.h"

namespace {

// The first byte of the input seeds the sizes of the pieces, so that a corpus is plain radio traffic.
std::vector<std::string_view> Pieces(std::string_view input) {
  std::vector<std::string_view> pieces;
  if (input.empty()) return pieces;
  std::uint32_t seed = static_cast<unsigned char>(input.front());
  input.remove_prefix(1);
  while (!input.empty()) {
    seed = seed * 1664525U + 1013904223U;
    const std::size_t size = std::min<std::size_t>(input.size(), 1 + (seed >> 24U) % 96);
    pieces.push_back(input.substr(0, size));
    input.remove_prefix(size);
  }
  return pieces;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(data, data + size);
  kestrune::test::ReaderPair readers;
  kestrune::test::ReceivingProgram program;
  for (const std::string_view piece : Pieces(input)) {
    readers.Take(piece);
    program.Take(piece);
  }
  program.End();
  return 0;
}
