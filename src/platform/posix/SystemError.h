#pragma once

#include <cerrno>
#include <system_error>

#include "base/Result.h"

namespace kestrune::platform {

/// A failure with the system's own words for its error number, which must not be 0.
inline base::Result FailedWith(int error) {
  return base::Result::Failed(std::generic_category().message(error));
}

/// The result of a system call that answers 0 on success and sets errno otherwise.
inline base::Result ResultOf(int answer) {
  return answer == 0 ? base::Result::Done() : FailedWith(errno);
}

}  // namespace kestrune::platform
