// Any text is parsed as a date; what is one must come back from each of its printed forms. Any text is a
// pattern too.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/DatePattern.h"
#include "base/DateValue.h"

namespace {

using kestrune::base::DateValue;

void Require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const auto date = kestrune::base::ParseDate(text);
  const DateValue moment = date.value_or(DateValue::FromCivil(2005, 1, 1, 12, 34, 56));
  const std::string printed = kestrune::base::FormatDate(moment, text);
  Require(printed.size() <= text.size() * 9 + 9);
  if (!date) return 0;
  Require(*date >= DateValue::FromCivil(100, 1, 1) &&
          *date <= DateValue::FromCivil(9999, 12, 31, 23, 59, 59));
  for (const std::string_view pattern : {"mmm d, yyyy hh:nn:ss", "mmmm d, yyyy h:nn:ss AM/PM",
                                         "yyyy-mm-dd hh:nn:ss", "MMM D, YYYY H:NN:SS am/pm"}) {
    Require(kestrune::base::ParseDate(kestrune::base::FormatDate(*date, pattern)) == date);
  }
  return 0;
}
