#include "platform/codec/RiffFile.h"

#include <limits>
#include <optional>
#include <string_view>

#include "base/Ignored.h"
#include "platform/codec/Bytes.h"
#include "platform/codec/TagText.h"

namespace kestrune::platform {
namespace {

constexpr std::uint32_t kSizeElsewhere = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t kChunkHeader = 8;
constexpr std::size_t kLongSizesBytes = 28;  // RIFF size, data size, sample count, empty table
constexpr std::int64_t kLongSizesAt = 12;
constexpr std::uint16_t kPcm = 1;

void AppendInfo(std::string& list, std::string_view name, const std::string& text) {
  if (text.empty()) return;
  list += name;
  AppendLe(list, text.size() + 1, 4);
  list += text;
  list.append(text.size() % 2 == 0 ? 2 : 1, '\0');
}

std::string InfoList(const TagTexts& texts) {
  std::string list = "INFO";
  AppendInfo(list, "IART", texts.Artist);
  AppendInfo(list, "INAM", texts.Title);
  AppendInfo(list, "ICMT", texts.Comment);
  AppendInfo(list, "ISFT", texts.Encoder);
  std::string chunk = "LIST";
  AppendLe(chunk, list.size(), 4);
  return chunk + list;
}

struct Layout {
  bool Long = false;          ///< RF64
  std::int64_t SoundEnd = 0;  ///< where the chunk after the data begins
};

/// Nothing if the file is none of ours, was never finished, or has more after the sound than an INFO list.
std::optional<Layout> FindLayout(const DiskFile& file) {
  const auto head = file.ReadAt(0, 12);
  if (!head || head->substr(8) != "WAVE") return std::nullopt;
  Layout layout;
  layout.Long = head->starts_with("RF64");
  if (!layout.Long && !head->starts_with("RIFF")) return std::nullopt;
  std::int64_t longDataBytes = -1;
  bool soundFound = false;
  std::int64_t at = kLongSizesAt;
  while (!soundFound) {
    const auto chunk = file.ReadAt(at, kChunkHeader);
    if (!chunk) return std::nullopt;
    auto bytes = static_cast<std::int64_t>(ReadLe(*chunk, 4, 4));
    const auto name = chunk->substr(0, 4);
    if (name == "ds64") {
      const auto sizes = file.ReadAt(at + kChunkHeader, kLongSizesBytes);
      if (!sizes) return std::nullopt;
      longDataBytes = static_cast<std::int64_t>(ReadLe(*sizes, 8, 8));
    }
    soundFound = name == "data";
    if (soundFound && layout.Long) bytes = longDataBytes;
    if (bytes < 0 || bytes > file.Size() - at - kChunkHeader) return std::nullopt;
    at += kChunkHeader + bytes + bytes % 2;
  }
  layout.SoundEnd = at;
  if (at == file.Size()) return layout;
  const auto behind = file.ReadAt(at, kChunkHeader + 4);
  if (!behind || !behind->starts_with("LIST") || !behind->ends_with("INFO") ||
      at + kChunkHeader + static_cast<std::int64_t>(ReadLe(*behind, 4, 4)) != file.Size()) {
    return std::nullopt;
  }
  return layout;
}

}  // namespace

std::string RiffFile::Header(std::int64_t fileBytes, std::int64_t dataBytes, std::int64_t frames) const {
  const bool open = fileBytes < 0;
  const bool isLong = !open && fileBytes - kChunkHeader >= kSizeElsewhere;
  const auto size = [&](std::int64_t bytes) {
    return open || isLong ? std::uint64_t{kSizeElsewhere} : static_cast<std::uint64_t>(bytes);
  };
  std::string header = isLong ? "RF64" : "RIFF";
  AppendLe(header, size(fileBytes - kChunkHeader), 4);
  header += "WAVE";
  header += isLong ? "ds64" : "JUNK";
  AppendLe(header, kLongSizesBytes, 4);
  AppendLe(header, isLong ? static_cast<std::uint64_t>(fileBytes - kChunkHeader) : 0, 8);
  AppendLe(header, isLong ? static_cast<std::uint64_t>(dataBytes) : 0, 8);
  AppendLe(header, isLong ? static_cast<std::uint64_t>(frames) : 0, 8);
  AppendLe(header, 0, 4);
  header += "fmt ";
  AppendLe(header, sound_.FormatTag == kPcm ? 16 : 18, 4);
  AppendLe(header, sound_.FormatTag, 2);
  AppendLe(header, sound_.Channels, 2);
  AppendLe(header, sound_.SampleRate, 4);
  AppendLe(header, sound_.BytesPerSecond, 4);
  AppendLe(header, sound_.BlockAlign, 2);
  AppendLe(header, sound_.BitsPerSample, 2);
  if (sound_.FormatTag != kPcm) {
    AppendLe(header, 0, 2);
    header += "fact";
    AppendLe(header, 4, 4);
    AppendLe(header, size(frames), 4);
  }
  header += "data";
  AppendLe(header, size(dataBytes), 4);
  return header;
}

bool RiffFile::Begin(DiskFile& file) {
  file_ = &file;
  const std::string header = Header(-1, -1, -1);
  dataStart_ = static_cast<std::int64_t>(header.size());
  return file_->Append(AsBytes(header));
}

bool RiffFile::Finish(std::int64_t frames) {
  const std::int64_t dataBytes = file_->Size() - dataStart_;
  const bool padded = dataBytes % 2 == 0 || file_->Append(AsBytes(std::string_view("\0", 1)));
  return file_->WriteAt(0, AsBytes(Header(file_->Size(), dataBytes, frames))) && padded;
}

bool WriteRiffInfo(DiskFile& file, const TagTexts& texts) {
  const auto layout = FindLayout(file);
  if (!layout) return false;
  const std::string list = InfoList(texts);
  const std::int64_t riffBytes = layout->SoundEnd + static_cast<std::int64_t>(list.size()) - kChunkHeader;
  if (!layout->Long && riffBytes >= kSizeElsewhere) return false;

  const std::int64_t oldBytes = file.Size() - layout->SoundEnd;
  const auto oldList = file.ReadAt(layout->SoundEnd, static_cast<std::size_t>(oldBytes));
  std::string size;
  AppendLe(size, static_cast<std::uint64_t>(riffBytes), layout->Long ? 8 : 4);
  const std::int64_t sizeAt = layout->Long ? kLongSizesAt + kChunkHeader : 4;
  if (oldList && file.Truncate(layout->SoundEnd) && file.Append(AsBytes(list)) &&
      file.WriteAt(sizeAt, AsBytes(size))) {
    return true;
  }
  if (oldList && file.Truncate(layout->SoundEnd)) base::Ignored(file.Append(AsBytes(*oldList)));
  return false;
}

}  // namespace kestrune::platform
