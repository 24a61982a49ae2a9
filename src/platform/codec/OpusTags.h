#pragma once

#include <string>
#include <string_view>

#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// The comment packet of Ogg Opus, of exactly kTagRoom bytes: zeros after the comments, which decoders skip.
[[nodiscard]] std::string OpusTagsPacket(const TagTexts& texts);

/// Writes the comment packet of an Ogg Opus file of ours, which is alone on the second page, in place.
/// False, and the file as it was, if the file has no such page.
[[nodiscard]] bool WriteOpusTags(DiskFile& file, const TagTexts& texts);

/// Artist and title of a comment packet; empty texts from what is none.
[[nodiscard]] FoundTags ReadOpusTags(std::string_view packet);

}  // namespace kestrune::platform
