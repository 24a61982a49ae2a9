#pragma once

#include <string>
#include <vector>

namespace kestrune::apps {

/// Lets the program with windows take the place of this process. It gets the same words, and is told by the name under
/// which it is started that this program was meant. `executable` is how this program was started, `words` the words after
/// its name. Returns only if there is no such program, with the exit status, after saying so.
[[nodiscard]] int StartDesktop(const std::string& executable, const std::vector<std::string>& words);

}  // namespace kestrune::apps
