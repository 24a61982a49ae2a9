#pragma once

#include "platform/TagWriter.h"

namespace kestrune::platform {

/// Writes tags into the files of EncodedFile, by their extension (case does not matter):
///   mp3         ID3v2.4 into the reserved room (TPE1, TIT2, COMM, TENC for the encoder), and ID3v1 at the end
///   ogg, flac, opus   Vorbis comments ARTIST, TITLE, COMMENT, ENCODER into the reserved room
///   wav, g726   a RIFF INFO list after the sound (IART, INAM, ICMT, ISFT), UTF-8
/// Raw and VOX files hold no tags, and are left as they are. The sound is neither moved nor touched. Texts are cut at
/// 900 bytes, control characters become blanks. Tagging again replaces the tags.
class FileTagWriter final : public TagWriter {
 public:
  base::Result Write(std::string_view path, const Tags& tags) override;
};

}  // namespace kestrune::platform
