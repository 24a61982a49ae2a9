#pragma once

#include <string>
#include <string_view>

#include "platform/Files.h"

namespace kestrune::presenters {

/// What a window says of the free space beside a folder.
struct FolderRoom {
  std::string Text;     ///< "123.4 GB free"; empty if nothing is known
  bool Scarce = false;  ///< less than `enough` bytes; the text says so too
};

/// The room on the volume of a folder that is named from the root; of a folder that does not exist yet, on the volume on which it would be made.
[[nodiscard]] FolderRoom RoomIn(const platform::Files& files, std::string_view folder, double enough);

}  // namespace kestrune::presenters
