// A file of any content under the name of a capture: tagging it does no harm, says what it did, and what it
// refuses it leaves as it was. What a mender finds of the tags afterwards is what was written.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/FlacHeader.h"
#include "platform/codec/FlacMender.h"
#include "platform/codec/Id3Tag.h"
#include "platform/codec/Mp3Mender.h"
#include "platform/codec/OggMender.h"
#include "platform/codec/OpusTags.h"
#include "platform/codec/RiffFile.h"
#include "platform/codec/VorbisComment.h"

namespace {

using kestrune::platform::DiskFile;
using kestrune::platform::MendedCapture;
using kestrune::platform::TagTexts;

void Require(bool holds) {
  if (!holds) std::abort();
}

struct Format {
  bool (*Write)(DiskFile&, const TagTexts&);
  kestrune::platform::MendFile Mend;
};

/// A file without sound, or with more than sound and tags, has none for the mender.
void RequireFound(const MendedCapture& mended, const TagTexts& texts) {
  if (mended.Is != MendedCapture::State::Whole) return;
  const bool none = mended.Artist.empty() && mended.Title.empty();
  Require(none || (mended.Artist == texts.Artist && mended.Title == texts.Title));
}

void Tag(const Format& format, const std::string& content, const TagTexts& texts) {
  const int memory = ::memfd_create("capture", MFD_CLOEXEC);
  const std::string path = "/proc/self/fd/" + std::to_string(memory);
  DiskFile file;
  Require(file.OpenExisting(path) && file.Append(kestrune::platform::AsBytes(content)));
  const bool tagged = format.Write(file, texts);
  const auto after = file.ReadAt(0, static_cast<std::size_t>(file.Size()));
  Require(after.has_value());
  if (!tagged) Require(*after == content);
  if (tagged) {
    // Once tagged, the same tags change nothing.
    Require(format.Write(file, texts));
    Require(file.ReadAt(0, static_cast<std::size_t>(file.Size())) == after);
    RequireFound(format.Mend(file, {}), texts);
  }
  ::close(memory);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(data, data + size);
  // The same bytes serve as the texts.
  kestrune::platform::Tags tags;
  tags.Artist = content.substr(0, size / 2);
  tags.Title = content.substr(size / 2);
  const TagTexts texts(tags);
  Tag({kestrune::platform::WriteId3, kestrune::platform::MendMp3}, content, texts);
  Tag({kestrune::platform::WriteVorbisComment, kestrune::platform::MendOgg}, content, texts);
  Tag({kestrune::platform::WriteRiffInfo, kestrune::platform::MendRiff}, content, texts);
  Tag({kestrune::platform::WriteFlacComment, kestrune::platform::MendFlac}, content, texts);
  Tag({kestrune::platform::WriteOpusTags, kestrune::platform::MendOgg}, content, texts);
  return 0;
}
