#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// A longer name of the encoding library is cut.
inline constexpr std::size_t kMaxVendor = 128;
/// The most that CommentFields takes: the vendor, and the texts with their sizes and names.
inline constexpr std::size_t kMaxCommentFields = 4 + kMaxVendor + 4 + 4 * (4 + 11 + kMaxTagText);

/// The fields that Vorbis, FLAC and Opus have alike: the vendor, and the comments ARTIST, TITLE, COMMENT and ENCODER, each
/// for a text that is not empty.
[[nodiscard]] std::string CommentFields(std::string_view vendor, const TagTexts& texts);

/// Artist and title of such fields, up to the first that is none; more may follow them.
[[nodiscard]] FoundTags ReadCommentFields(std::string_view fields);

}  // namespace kestrune::platform
