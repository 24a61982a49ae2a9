#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::platform {

/// The keys of the group [Desktop Entry] in the text of a desktop file, as they stand there, blanks around keys and
/// values aside. If a key appears several times, the last one counts. Empty if there is no such group.
[[nodiscard]] std::map<std::string, std::string> DesktopEntryKeys(std::string_view text);

/// The value of a key that holds a plain text, such as a path.
[[nodiscard]] std::string DesktopEntryText(std::string_view text);
/// The text that such a value stands for; what is no escape stays as it is.
[[nodiscard]] std::string TextOfDesktopEntry(std::string_view value);

/// The value of the key Exec that starts a program with these words, the program's path first, whatever characters they
/// hold.
[[nodiscard]] std::string DesktopEntryCommand(std::span<const std::string> words);

}  // namespace kestrune::platform
