#pragma once

#include <string>

namespace kestrune::platform {

/// Three ways to give a file a new name that never replace another file, not even one that takes the name at
/// the same moment. Not every file system has each of them.
enum class RenameOutcome {
  Done,
  Refused,     ///< the name is taken, or the file cannot be renamed at all; errno says which
  Unsupported  ///< this file system cannot do it in this way
};

/// The system's own rename that never replaces.
[[nodiscard]] RenameOutcome RenameInOneStep(const std::string& from, const std::string& to);
/// A second name for the file, then the first one goes.
[[nodiscard]] RenameOutcome RenameByLink(const std::string& from, const std::string& to);
/// An empty file claims the new name, then the file takes that one's place.
[[nodiscard]] RenameOutcome RenameByClaim(const std::string& from, const std::string& to);

/// The first of the three that the file system has. 0, or the error; EEXIST if the new name is taken.
[[nodiscard]] int RenameNeverReplacing(const std::string& from, const std::string& to);

}  // namespace kestrune::platform
