#pragma once

#include <string>

#include "platform/Environment.h"
#include "platform/Files.h"

namespace kestrune::schedule {

/// The folder of lists, logs and traces, without a separator at its end: "/Application Data/Kestrune" under
/// the variable `userprofile`, or the folder of the executable if that variable is empty.
[[nodiscard]] std::string UserDataFolder(const platform::Environment& environment);

/// The same, created with its parents if it is not there; a failure to create it is swallowed.
[[nodiscard]] std::string MakeUserDataFolder(platform::Files& files,
                                             const platform::Environment& environment);

}  // namespace kestrune::schedule
