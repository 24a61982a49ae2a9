// A file of any content under the name of a capture: mending it does no harm, leaves what it refuses as it was, and is
// done after one time.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <ogg/ogg.h>
#include <sys/mman.h>
#include <unistd.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/DiskFile.h"
#include "platform/codec/FlacMender.h"
#include "platform/codec/Mp3Mender.h"
#include "platform/codec/OggMender.h"
#include "platform/codec/RiffFile.h"
#include "platform/codec/SndfileEncoder.h"

namespace {

using kestrune::platform::DiskFile;
using kestrune::platform::MendedCapture;
using kestrune::platform::MendFile;

void Require(bool holds) {
  if (!holds) std::abort();
}

std::string Bytes(const DiskFile& file) {
  const auto bytes = file.ReadAt(0, static_cast<std::size_t>(file.Size()));
  Require(bytes.has_value());
  return *bytes;
}

void Mend(MendFile mend, const std::string& content) {
  const int memory = ::memfd_create("capture", MFD_CLOEXEC);
  DiskFile file;
  Require(file.OpenExisting("/proc/self/fd/" + std::to_string(memory)));
  Require(file.Append(kestrune::platform::AsBytes(content)));
  const MendedCapture mended = mend(file, {});
  const std::string after = Bytes(file);
  if (mended.Is != MendedCapture::State::Whole) {
    Require(after == content);
  } else {
    // One byte is what fills up an odd chunk.
    Require(!after.empty() && after.size() <= content.size() + 1);
    const MendedCapture again = mend(file, {});
    Require(again.Is == MendedCapture::State::Whole && again.LengthMs == mended.LengthMs);
    Require(Bytes(file) == after);
  }
  ::close(memory);
}

/// Nobody guesses a checksum.
std::string WithChecksums(std::string bytes) {
  constexpr std::size_t kFixed = 27;
  for (std::size_t at = 0; bytes.compare(at, 4, "OggS") == 0 && bytes.size() - at >= kFixed;) {
    const std::size_t header = kFixed + static_cast<unsigned char>(bytes[at + kFixed - 1]);
    if (bytes.size() - at < header) break;
    std::size_t body = 0;
    for (std::size_t i = kFixed; i < header; ++i) body += static_cast<unsigned char>(bytes[at + i]);
    if (bytes.size() - at - header < body) break;
    auto* const start = reinterpret_cast<unsigned char*>(bytes.data()) + at;
    ogg_page page{start, static_cast<long>(header), start + header, static_cast<long>(body)};
    ogg_page_checksum_set(&page);
    at += header + body;
    if (at >= bytes.size()) break;
  }
  return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string content(data, data + size);
  Mend(kestrune::platform::MendMp3, content);
  Mend(kestrune::platform::MendOgg, WithChecksums(content));
  Mend(kestrune::platform::MendRiff, content);
  Mend(kestrune::platform::MendRaw, content);
  Mend(kestrune::platform::MendVox, content);
  Mend(kestrune::platform::MendFlac, content);
  return 0;
}
