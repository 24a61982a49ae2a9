#pragma once

namespace kestrune::recorder {

/// Why a unit that closes does nothing more.
inline constexpr const char* kClosing = "the program is closing";

}  // namespace kestrune::recorder
