#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// The socket of a unit in the runtime folder. The unit's text becomes part of a file name as FileNameFor
/// says, so that no unit leads out of the folder.
[[nodiscard]] std::string ControlSocketPath(std::string_view folder, std::string_view unit);

}  // namespace kestrune::platform
