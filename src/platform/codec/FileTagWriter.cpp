#include "platform/codec/FileTagWriter.h"

#include "base/Text.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/Id3Tag.h"
#include "platform/codec/RiffFile.h"
#include "platform/codec/TagText.h"
#include "platform/codec/VorbisComment.h"

namespace kestrune::platform {
namespace {

bool HasExtension(std::string_view path, std::string_view extension) {
  return path.size() >= extension.size() &&
         base::EqualsNoCase(path.substr(path.size() - extension.size()), extension);
}

}  // namespace

bool FileTagWriter::Write(std::string_view path, const Tags& tags) {
  // The content of a raw file is sound, and may begin with any bytes: the name alone says what it is.
  const bool isMp3 = HasExtension(path, ".mp3");
  const bool isOgg = HasExtension(path, ".ogg");
  const bool isRiff = HasExtension(path, ".wav") || HasExtension(path, ".g726");
  if (!isMp3 && !isOgg && !isRiff) return false;

  DiskFile file;
  if (!file.OpenExisting(path)) return false;
  const TagTexts texts(tags);
  if (isMp3) return WriteId3(file, texts);
  if (isOgg) return WriteVorbisComment(file, texts);
  return WriteRiffInfo(file, texts);
}

}  // namespace kestrune::platform
