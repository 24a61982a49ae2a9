#include "support/FaultyLine.h"

namespace kestrune::test {

using namespace std::chrono_literals;

bool FaultyLine::Strikes(double chance) {
  // Drawn also where there is no chance, so that switching one fault on does not move the others.
  const bool strikes = std::uniform_real_distribution<double>(0, 1)(random_) < chance;
  if (strikes) ++FaultsDone;
  return strikes;
}

std::string FaultyLine::Input() {
  std::string bytes;
  bytes.swap(arrived_);
  bytes += honest_.Input();
  if (bytes.empty()) return bytes;
  if (Strikes(Now.LostReply)) return {};
  if (Strikes(Now.CorruptByte)) {
    const std::size_t at = std::uniform_int_distribution<std::size_t>(0, bytes.size() - 1)(random_);
    bytes[at] = static_cast<char>(std::uniform_int_distribution<int>(0, 255)(random_));
  }
  if (bytes.size() > 1 && Strikes(Now.SplitFrame)) {
    HoldBack(bytes.substr(bytes.size() / 2));
    bytes.resize(bytes.size() / 2);
  }
  return bytes;
}

void FaultyLine::HoldBack(std::string rest) {
  loop_.AtHardware(70ms, [this, rest = std::move(rest)] {
    arrived_ += rest;
    loop_.Post([this] { handler_(); });
  });
}

bool FaultyLine::Output(std::string_view bytes) {
  if (Strikes(Now.NoiseBefore)) {
    const auto count = std::uniform_int_distribution<int>(1, 40)(random_);
    for (int i = 0; i < count; ++i) {
      arrived_ += static_cast<char>(std::uniform_int_distribution<int>(0, 255)(random_));
    }
  }
  if (Strikes(Now.LostCommand)) return true;
  return honest_.Output(bytes);
}

}  // namespace kestrune::test
