#pragma once

#include <optional>
#include <string>

#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// An ID3v2.4 tag of exactly kTagRoom bytes, padded with zeros: TPE1, TIT2, COMM and, for the encoder's text,
/// TENC, all UTF-8. An empty text has no frame.
[[nodiscard]] std::string Id3v2Tag(const TagTexts& texts);

/// Writes the tag into the room at the head of an MP3 file of ours, and an ID3v1 tag at its end, in place of
/// one that is there. A disk with no room left for the latter is no failure. False, and the file as it was,
/// if the file has no such room.
[[nodiscard]] bool WriteId3(DiskFile& file, const TagTexts& texts);

/// Artist and title of the tag in the room of an MP3 file of ours; nothing if there is no such room. An empty tag and one
/// that is no tag of ours give empty texts.
[[nodiscard]] std::optional<FoundTags> ReadId3(const DiskFile& file);

}  // namespace kestrune::platform
