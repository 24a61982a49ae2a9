#pragma once

#include <string>
#include <string_view>

#include "platform/codec/DiskFile.h"

namespace kestrune::platform {

/// A page of Ogg as it is, but for its contents: a comment packet of kTagRoom bytes, alone.
[[nodiscard]] std::string OggCommentPage(std::string_view page, std::string_view packet);

/// Writes a comment packet of kTagRoom bytes in the place of another one, which is alone on the second page and begins
/// with `start` as this one does. False, and the file as it was, if there is no such page.
[[nodiscard]] bool WriteOggComment(DiskFile& file, std::string_view start, std::string_view packet);

}  // namespace kestrune::platform
