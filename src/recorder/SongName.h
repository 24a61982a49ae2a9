#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/DateValue.h"

namespace kestrune::recorder {

/// What the placeholders of a filename format stand for.
struct SongNameValues {
  std::string Artist;            ///< %a
  std::string Song;              ///< %s
  std::int16_t Channel = 0;      ///< %c, without padding
  std::string Station;           ///< %t
  std::string Genre;             ///< %g
  base::DateValue SessionStart;  ///< %d, as yyyymmdd_hhnn
  std::int16_t Recorded = 0;     ///< %n, three digits
};

/// What a song's place follows from.
struct SongNaming {
  std::string FilenameFormat;
  std::string FileDir;
  SongNameValues Values;
};

/// A place for a song: absolute, with "/" between folders.
struct SongName {
  std::string Folder;    ///< with "/" at its end
  std::string FileName;  ///< Folder and the name, without suffix and extension

  bool operator==(const SongName&) const = default;
};

/// Expands a filename format, in which a backslash separates folders, under `fileDir`.
///
/// The values are a stranger's text: whatever they hold, the song stays below `fileDir`, no component is ".",
/// ".." or hidden, none holds a separator or a control character, and none is longer than a file system
/// takes; the file name leaves room for a suffix, a counter and the extension.
[[nodiscard]] SongName BuildSongName(std::string_view filenameFormat, std::string_view fileDir,
                                     std::string_view extension, const SongNameValues& values);

/// Whole minutes without padding, ":", two-digit seconds.
[[nodiscard]] std::string FormatSeconds(std::int64_t seconds);

}  // namespace kestrune::recorder
