#pragma once

#include <string>

#include <sys/types.h>

#include "platform/posix/FileDescriptor.h"

namespace kestrune::platform {

/// Files that one process is writing and that no other process may open, empty or remove meanwhile. The mark is a lock
/// on the open file, which the system takes off when the last descriptor is closed, however the process ends. Where
/// the file system has no locks, every file counts as free.

/// Creates a file and holds it for as long as a descriptor is open. It is always a new file, never reached through
/// a link: a plain file or a link of that name that nobody holds is removed first. Not open on failure, with the reason
/// in errno: EBUSY if the name belongs to a file that is held, or to something that is neither file nor link.
[[nodiscard]] FileDescriptor CreateHeld(const std::string& path, mode_t mode);

/// Opens a plain file that nobody holds, for reading and writing, and holds it. Not open on failure, with the reason in
/// errno: EBUSY if it is held or no plain file, ELOOP if it is a link.
[[nodiscard]] FileDescriptor OpenHeld(const std::string& path);

/// Removes a plain file or a link that nobody holds. 0, or the error: EBUSY as above.
[[nodiscard]] int RemoveUnheld(const std::string& path);

}  // namespace kestrune::platform
