#pragma once

#include <string>

#include "platform/Environment.h"
#include "platform/Files.h"

namespace kestrune::schedule {

/// The folder of lists, logs and traces, without a separator at its end: "/Application Data/Kestrune" under
/// the variable `userprofile`, or the folder of the executable if that variable is empty.
[[nodiscard]] std::string UserDataFolder(const platform::Environment& environment);

/// The same, made with its parents if it is not there, closed to other users; a failure to make it is swallowed.
[[nodiscard]] std::string MakeUserDataFolder(platform::Files& files,
                                             const platform::Environment& environment);

/// Makes the folder, and closes one to other users that an earlier release has left open to them. The executable's
/// folder is left as it is.
void CloseUserDataFolder(platform::Files& files, const platform::Environment& environment);

}  // namespace kestrune::schedule
