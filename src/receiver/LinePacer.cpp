#include "receiver/LinePacer.h"

#include <algorithm>

namespace kestrune::receiver {

LinePacer::LinePacer(int baud) : baud_(baud) {}

LinePacer::Microseconds LinePacer::Length(std::size_t bytes) const {
  constexpr std::int64_t kBitsAByte = 10;
  const std::int64_t bits = static_cast<std::int64_t>(bytes) * kBitsAByte;
  // A byte has not arrived before its end: fractions round up.
  return Microseconds((bits * 1'000'000 + baud_ - 1) / baud_);
}

void LinePacer::Queue(Microseconds at, std::string_view bytes) {
  if (bytes.empty()) return;
  const Microseconds start = std::max(at, freeAt_);
  runs_.push_back({start, std::string(bytes), 0});
  freeAt_ = start + Length(bytes.size());
}

std::string LinePacer::Take(Microseconds now) {
  std::string through;
  while (!runs_.empty()) {
    Run& run = runs_.front();
    std::size_t end = run.Taken;
    while (end < run.Bytes.size() && run.Start + Length(end + 1) <= now) ++end;
    through.append(run.Bytes, run.Taken, end - run.Taken);
    run.Taken = end;
    if (end < run.Bytes.size()) break;
    runs_.pop_front();
  }
  return through;
}

std::optional<LinePacer::Microseconds> LinePacer::NextByte() const {
  if (runs_.empty()) return std::nullopt;
  return runs_.front().Start + Length(runs_.front().Taken + 1);
}

}  // namespace kestrune::receiver
