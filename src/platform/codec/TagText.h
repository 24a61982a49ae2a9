#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/TagWriter.h"

namespace kestrune::platform {

/// Bytes reserved in MP3, Ogg, FLAC and Opus files for all tags together.
inline constexpr std::size_t kTagRoom = 4096;
/// A longer text is cut, so that four of them and what frames them always fit into the room.
inline constexpr std::size_t kMaxTagText = 900;

/// The texts of a tag, made fit for a file. They come from the radio, so they may hold anything.
struct TagTexts {
  explicit TagTexts(const Tags& tags);

  std::string Artist;
  std::string Title;
  std::string Comment;
  std::string Encoder;
};

/// What a file's tags say, made fit for a log and a file name.
struct FoundTags {
  std::string Artist;
  std::string Title;
};

/// Valid UTF-8 of at most kMaxTagText bytes: control characters become blanks, bytes that are no UTF-8 become
/// question marks.
[[nodiscard]] std::string CleanTagText(std::string_view text);

/// Latin-1, a question mark for every other character. The text must be valid UTF-8.
[[nodiscard]] std::string ToLatin1(std::string_view text);

}  // namespace kestrune::platform
