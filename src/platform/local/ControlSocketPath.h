#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// The socket of a unit: kestrune<unit>.sock in the folder. Of a unit's name, letters and digits stand for
/// themselves and every other byte for "%" and two hexadecimal digits, so that no unit leads out of the
/// folder.
[[nodiscard]] std::string ControlSocketPath(std::string_view folder, std::string_view unit);

}  // namespace kestrune::platform
