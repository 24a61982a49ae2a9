#include "platform/codec/FileTagWriter.h"

#include "platform/codec/CodecTable.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {
bool FileTagWriter::Write(std::string_view path, const Tags& tags) {
  const Codec* const codec = FindCodecOfFile(path);
  if (codec == nullptr || codec->WriteTags == nullptr) return false;

  DiskFile file;
  if (!file.OpenExisting(path)) return false;
  return codec->WriteTags(file, TagTexts(tags));
}

}  // namespace kestrune::platform
