#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <sys/types.h>

namespace kestrune::platform {

/// The modes of what belongs to the user alone: settings, logs, lists and the folders that hold them.
inline constexpr mode_t kOwnFile = 0600;
inline constexpr mode_t kOwnFolder = 0700;

/// The path as the system takes it; nothing if it holds a NUL, after which the system would not look.
[[nodiscard]] std::optional<std::string> SystemPath(std::string_view path);

/// A file name for any text: lower case, letters, digits, "-" and "_" unchanged, every other byte as "%"
/// and two hexadecimal digits. Texts that differ by more than case give different names.
[[nodiscard]] std::string FileNameFor(std::string_view text);

/// The folder of a path: "." for a name alone, "/" for one in the root.
[[nodiscard]] std::string FolderOf(const std::string& path);

/// Makes the folder and the parents that are missing, each with the mode. True if the folder is there afterwards.
bool MakeFolders(const std::string& path, mode_t mode);

/// Whether the name matches a pattern in which "*" is any run of characters and "?" any one of them.
[[nodiscard]] bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace kestrune::platform
