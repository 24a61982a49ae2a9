#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Result.h"

namespace kestrune::platform {

/// Reads an open file from its current position to its end; nothing if a read fails.
[[nodiscard]] std::optional<std::string> ReadToEnd(int file);

/// Writes all of the text; false, with the reason in errno, if the system took only part of it.
[[nodiscard]] bool WriteAll(int file, std::string_view text);

/// Puts a file in place as a whole: `write` fills a private file in the same folder, which is then on disk
/// before it takes the name; `write` returns false with the reason in errno. A link is followed. The new file can be read
/// by its owner alone, whatever the mode of the old one. On failure the old file stays. Private files that a killed
/// process left in the folder are removed.
[[nodiscard]] base::Result ReplaceFile(const std::string& path, const std::function<bool(int file)>& write);

}  // namespace kestrune::platform
