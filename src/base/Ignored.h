#pragma once

namespace kestrune::base {

/// Marks a failure that is swallowed on purpose: the next step runs whatever became of this one.
template <typename Result>
constexpr void Ignored(Result&& /*result*/) {}

}  // namespace kestrune::base
