#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/CaptureFormat.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/Encoder.h"
#include "platform/codec/Mending.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {

/// One recording format: what writes its sound and its tags, and what mends a file that was never closed. The functions that take a format must be given
/// this one.
struct Codec {
  std::string_view Extension;  ///< lower case, with its point
  bool (*Holds)(const CaptureFormat& format);
  std::unique_ptr<Encoder> (*MakeEncoder)(const CaptureFormat& format);
  /// One line for the user, such as "MP3, 160 kbit/s constant, 44100 Hz, joint stereo".
  std::string (*Description)(const CaptureFormat& format);
  /// Null if such files hold no tags. Otherwise false if the file is none of ours; it is then as it was.
  bool (*WriteTags)(DiskFile& file, const TagTexts& texts);
  MendFile Mend;
};

/// Null for the empty format.
[[nodiscard]] const Codec* FindCodec(const CaptureFormat& format);
/// By the end of the file's name, in upper or lower case; null if no format has such files. The name alone
/// counts, since the sound of a raw file may begin with any bytes.
[[nodiscard]] const Codec* FindCodecOfFile(std::string_view path);

}  // namespace kestrune::platform
