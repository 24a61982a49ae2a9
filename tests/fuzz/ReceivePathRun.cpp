// Radio traffic by seed through the receive path, as much as is asked for: whole replies, spoilt ones and noise, in pieces of
// any size. One pair of readers takes all of it; the program behind them is begun anew after each million bytes.
//
//   receive_path_run [BYTES [SEED]]      1000000 bytes and a seed of its own, without arguments

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include "RadioTraffic.h"
#include "ReceivePath.h"

namespace {

constexpr std::uint64_t kOneProgram = 1'000'000;

bool ReadNumber(const char* text, std::uint64_t& number) {
  const char* const end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  return error == std::errc() && stop == end;
}

}  // namespace

int main(int argc, char** argv) {
  std::uint64_t wanted = kOneProgram;
  std::uint64_t seed = std::random_device()();
  if (argc > 3 || (argc > 1 && !ReadNumber(argv[1], wanted)) || (argc > 2 && !ReadNumber(argv[2], seed))) {
    std::fprintf(stderr, "usage: receive_path_run [BYTES [SEED]]\n");
    return 2;
  }
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  std::fflush(stdout);

  kestrune::test::RadioTraffic traffic(seed);
  kestrune::test::ReaderPair readers;
  std::unique_ptr<kestrune::test::ReceivingProgram> program;
  std::uint64_t programs = 0;
  std::string waiting;
  while (readers.BytesIn() < wanted) {
    if (readers.BytesIn() >= programs * kOneProgram) {
      if (program) program->End();
      program = std::make_unique<kestrune::test::ReceivingProgram>();
      ++programs;
    }
    // Mostly what a line brings between two looks at it, now and then what has waited for long.
    const std::size_t size = 1 + traffic.Roll(traffic.Roll(50) == 0 ? 4095 : 95);
    while (waiting.size() < size) waiting += traffic.Next();
    const std::string_view piece = std::string_view(waiting).substr(0, size);
    readers.Take(piece);
    program->Take(piece);
    waiting.erase(0, size);
  }
  if (program) program->End();
  std::printf("%llu bytes in %llu programs: %llu frames, %llu bytes of noise\n",
              static_cast<unsigned long long>(readers.BytesIn()), static_cast<unsigned long long>(programs),
              static_cast<unsigned long long>(readers.Frames()),
              static_cast<unsigned long long>(readers.JunkBytes()));
  // A run that meets no frame or no noise has tried nothing.
  return readers.Frames() > 0 && readers.JunkBytes() > 0 ? 0 : 1;
}
