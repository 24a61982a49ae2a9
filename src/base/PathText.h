#pragma once

#include <string>
#include <string_view>

/// The parts of a path's text, with "/" between folders.
namespace kestrune::base {

/// The folder, with the "/" at its end; empty if the path has none.
[[nodiscard]] inline std::string FolderOf(std::string_view path) {
  return std::string(path.substr(0, path.rfind('/') + 1));
}

/// What follows the last "/": the whole path if it has none.
[[nodiscard]] inline std::string NameOf(std::string_view path) {
  return std::string(path.substr(path.rfind('/') + 1));
}

/// What follows the last point: the whole path if it has none.
[[nodiscard]] inline std::string ExtensionOf(std::string_view path) {
  return std::string(path.substr(path.rfind('.') + 1));
}

}  // namespace kestrune::base
