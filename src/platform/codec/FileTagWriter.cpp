#include "platform/codec/FileTagWriter.h"

#include "platform/codec/CodecTable.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {
base::Result FileTagWriter::Write(std::string_view path, const Tags& tags) {
  const Codec* const codec = FindCodecOfFile(path);
  if (codec == nullptr || codec->WriteTags == nullptr) return base::Result::Done();

  DiskFile file;
  if (!file.OpenExisting(path)) return file.Failure();
  if (codec->WriteTags(file, TagTexts(tags))) return base::Result::Done();
  return file.Error() == 0 ? base::Result::Failed("it is not a file of its format") : file.Failure();
}

}  // namespace kestrune::platform
