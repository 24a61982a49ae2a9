#include "presenters/SpinRange.h"

#include <algorithm>

#include "base/Numbers.h"

namespace kestrune::presenters {

std::string Stepped(std::string_view text, const SpinRange& range, int direction) {
  const double wanted = base::LeadingNumber(text) + static_cast<double>(direction) * range.Step;
  const double held = std::clamp(wanted, static_cast<double>(range.Least), static_cast<double>(range.Most));
  return std::to_string(base::ToInt32(held).value_or(range.Least));
}

}  // namespace kestrune::presenters
