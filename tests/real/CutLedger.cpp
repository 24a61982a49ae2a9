#include "real/CutLedger.h"

#include <algorithm>
#include <utility>

#include "real/Decoded.h"

namespace kestrune::test {
namespace {

using Numbers = std::vector<std::int64_t>;

Numbers NumbersOf(const std::string& file) {
  const Decoded sound = DecodeWithFfmpeg(file);
  Numbers numbers;
  for (std::size_t i = 0; i + 1 < sound.Samples.size(); i += 2) {
    const auto low = static_cast<std::uint16_t>(sound.Samples[i]);
    const auto high = static_cast<std::uint16_t>(sound.Samples[i + 1]);
    numbers.push_back(std::int64_t{high} << 16 | low);
  }
  return numbers;
}

std::int64_t FirstNumber(const Numbers& numbers) {
  const auto first = std::find_if(numbers.begin(), numbers.end(), [](std::int64_t n) { return n != 0; });
  return first == numbers.end() ? 0 : *first;
}

}  // namespace

CutLedger ReadCutLedger(const std::vector<std::string>& files) {
  std::vector<Numbers> sounds;
  sounds.reserve(files.size());
  for (const std::string& file : files) sounds.push_back(NumbersOf(file));
  std::sort(sounds.begin(), sounds.end(),
            [](const Numbers& a, const Numbers& b) { return FirstNumber(a) < FirstNumber(b); });

  CutLedger ledger;
  ledger.Files = static_cast<int>(files.size());
  std::int64_t last = 0;
  for (const Numbers& numbers : sounds) {
    for (const std::int64_t number : numbers) {
      if (number == 0) {
        ++ledger.Silent;
      } else if (last == 0 || number == last + 1) {
        ++ledger.Frames;
        last = number;
      } else if (number > last) {
        ledger.Lost += number - last - 1;
        ledger.Missing.emplace_back(last + 1, number);
        last = number;
      } else {
        ++ledger.Doubled;
      }
    }
  }
  ledger.Last = last;
  return ledger;
}

}  // namespace kestrune::test
