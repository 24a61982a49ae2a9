#pragma once

namespace kestrune::base {

/// Says that a failure at this place is swallowed on purpose: the next step runs whatever came of this one.
template <typename Result>
constexpr void Ignored(Result&& /*result*/) {}

}  // namespace kestrune::base
