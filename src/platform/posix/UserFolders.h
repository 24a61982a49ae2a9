#pragma once

#include <string>
#include <string_view>

namespace kestrune::platform {

/// Without the "/" at its end, but for the root.
[[nodiscard]] std::string WithoutEndSeparator(std::string path);

/// The music folder by the desktop's list of user folders, whose lines read XDG_MUSIC_DIR="$HOME/Music", the last of them;
/// empty if it names none that begins at the root.
[[nodiscard]] std::string MusicFolderIn(std::string_view list, std::string_view home);

}  // namespace kestrune::platform
