#pragma once

#include <string>
#include <string_view>

namespace kestrune::config {

/// The text of the maker's version file: the latest version, and in a second line, if there is one, the address
/// of its installer.
struct VersionFile {
  std::string Version;          ///< blanks at its ends cut
  std::string DownloadAddress;  ///< all that follows the first line, unchanged
};

/// Lines may end in CR, LF or both. Of a text that is no such file, Version is its first line.
[[nodiscard]] VersionFile ReadVersionFile(std::string_view text);

/// A version as the file writes it: three groups of three digits, "003.000.029".
[[nodiscard]] std::string VersionText(int major, int minor, int revision);
/// That of this program.
[[nodiscard]] std::string RunningVersionText();

/// Whether a text has that form.
[[nodiscard]] bool IsVersion(std::string_view text);

/// Texts are compared by the code of their characters, not as numbers: whatever sorts after is newer.
[[nodiscard]] bool IsNewer(std::string_view version, std::string_view running);

}  // namespace kestrune::config
