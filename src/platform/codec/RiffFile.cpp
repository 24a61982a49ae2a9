#include "platform/codec/RiffFile.h"

#include <algorithm>
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

constexpr std::size_t kFormatAt = 56;  ///< in a header of ours
constexpr std::size_t kFormatBytes = 16;

/// What a header of ours says.
struct Facts {
  RiffSound Sound;
  std::int64_t HeaderBytes = 0;
  std::int64_t DataBytes = -1;  ///< negative while the file is open
  std::int64_t Frames = -1;
};

RiffSound SoundOf(std::string_view format) {
  RiffSound sound;
  sound.FormatTag = static_cast<std::uint16_t>(ReadLe(format, 0, 2));
  sound.Channels = static_cast<std::uint16_t>(ReadLe(format, 2, 2));
  sound.SampleRate = static_cast<std::uint32_t>(ReadLe(format, 4, 4));
  sound.BytesPerSecond = static_cast<std::uint32_t>(ReadLe(format, 8, 4));
  sound.BlockAlign = static_cast<std::uint16_t>(ReadLe(format, 12, 2));
  sound.BitsPerSample = static_cast<std::uint16_t>(ReadLe(format, 14, 2));
  return sound;
}

/// As the format chunk of a header of ours says; nothing if there is none.
std::optional<RiffSound> ReadSound(const DiskFile& file) {
  const auto format = file.ReadAt(kFormatAt, kFormatBytes);
  if (!format) return std::nullopt;
  const RiffSound sound = SoundOf(*format);
  if (sound.SampleRate == 0 || sound.BlockAlign == 0 || sound.Channels == 0 || sound.BitsPerSample == 0)
    return std::nullopt;
  return sound;
}

/// Whether the file ends before the header of an open file does that it begins with.
bool EndsInItsHeader(const DiskFile& file) {
  const auto sound = ReadSound(file);
  // The front of the header is the same for all.
  std::string header = RiffFile(sound.value_or(RiffSound())).Header(-1, -1, -1);
  if (file.Size() >= static_cast<std::int64_t>(header.size())) return false;
  if (!sound) header.resize(kFormatAt - 4);
  const auto head = file.ReadAt(0, std::min(static_cast<std::size_t>(file.Size()), header.size()));
  return head && header.starts_with(*head);
}

/// Nothing if the file does not begin with a header as RiffFile writes it.
std::optional<Facts> FactsOf(const DiskFile& file) {
  const auto sound = ReadSound(file);
  if (!sound) return std::nullopt;
  Facts facts;
  facts.Sound = *sound;
  const RiffFile riff(facts.Sound);
  const std::string open = riff.Header(-1, -1, -1);
  const auto header = file.ReadAt(0, open.size());
  if (!header) return std::nullopt;
  facts.HeaderBytes = static_cast<std::int64_t>(open.size());
  if (*header == open) return facts;
  const auto number = [&header](std::size_t at, int bytes) {
    return static_cast<std::int64_t>(ReadLe(*header, at, bytes) & std::numeric_limits<std::int64_t>::max());
  };
  const bool isLong = header->starts_with("RF64");
  const std::int64_t riffBytes = isLong ? number(20, 8) : number(4, 4);
  if (riffBytes > std::numeric_limits<std::int64_t>::max() - kChunkHeader) return std::nullopt;
  facts.DataBytes = isLong ? number(28, 8) : number(open.size() - 4, 4);
  facts.Frames = isLong ? number(36, 8) : facts.Sound.FormatTag == kPcm ? 0 : number(open.size() - 12, 4);
  if (*header != riff.Header(riffBytes + kChunkHeader, facts.DataBytes, facts.Frames)) return std::nullopt;
  return facts;
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

/// The texts of an INFO list from a place on, up to the first that is none.
FoundTags ReadInfo(const DiskFile& file, std::int64_t at) {
  constexpr std::int64_t kListHeader = kChunkHeader + 4;
  constexpr std::int64_t kMostBytes = 4 * (kChunkHeader + static_cast<std::int64_t>(kMaxTagText) + 2);
  FoundTags found;
  const std::int64_t size = file.Size() - at - kListHeader;
  const auto list = size <= 0 || size > kMostBytes
                        ? std::nullopt
                        : file.ReadAt(at + kListHeader, static_cast<std::size_t>(size));
  if (!list) return found;
  constexpr auto kName = static_cast<std::size_t>(kChunkHeader);
  for (std::size_t place = 0; place + kName <= list->size();) {
    const auto bytes = static_cast<std::size_t>(ReadLe(*list, place + 4, 4));
    const std::string_view name = std::string_view(*list).substr(place, 4);
    place += kName;
    if (bytes == 0 || bytes > list->size() - place) break;
    const std::string_view text = std::string_view(*list).substr(place, bytes - 1);
    if (name == "IART") found.Artist = CleanTagText(text);
    if (name == "INAM") found.Title = CleanTagText(text);
    place += bytes + bytes % 2;
  }
  return found;
}

/// Bytes of sound as milliseconds.
std::int64_t LengthOf(const RiffSound& sound, std::int64_t bytes) {
  const std::int64_t bits = std::int64_t{sound.Channels} * sound.BitsPerSample;
  const std::int64_t frames = bytes / bits * 8 + bytes % bits * 8 / bits;
  const std::int64_t rate = sound.SampleRate;
  return frames / rate * 1000 + frames % rate * 1000 / rate;
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

void RiffFile::Resume(DiskFile& file) {
  file_ = &file;
  dataStart_ = static_cast<std::int64_t>(Header(-1, -1, -1).size());
}

bool RiffFile::Finish(std::int64_t frames) {
  const std::int64_t dataBytes = file_->Size() - dataStart_;
  const bool padded = dataBytes % 2 == 0 || file_->Append(AsBytes(std::string_view("\0", 1)));
  return file_->WriteAt(0, AsBytes(Header(file_->Size(), dataBytes, frames))) && padded;
}

MendedCapture MendRiff(DiskFile& file, const std::stop_token& /*stop*/) {
  if (EndsInItsHeader(file)) return NoSound();
  const auto facts = FactsOf(file);
  if (!facts) return NoCapture();
  const std::int64_t room = file.Size() - facts->HeaderBytes;
  if (facts->DataBytes >= 0 && facts->DataBytes <= room) {
    if (facts->DataBytes == 0) return NoSound();
    const std::int64_t length = LengthOf(facts->Sound, facts->DataBytes);
    if (const auto layout = FindLayout(file)) return Mended(length, ReadInfo(file, layout->SoundEnd));
    // The tags were being written, which is what comes last.
    if (room - facts->DataBytes > kMostCutOff) return NotMended("it is damaged long before its end");
  }
  const bool open = facts->DataBytes < 0 || facts->DataBytes > room;
  const std::int64_t bytes = open ? room - room % facts->Sound.BlockAlign : facts->DataBytes;
  if (bytes == 0) return NoSound();
  const std::int64_t bits = std::int64_t{facts->Sound.Channels} * facts->Sound.BitsPerSample;
  const std::int64_t frames = open ? bytes / bits * 8 + bytes % bits * 8 / bits : facts->Frames;
  RiffFile riff(facts->Sound);
  riff.Resume(file);
  if (!file.Truncate(facts->HeaderBytes + bytes) || !riff.Finish(frames)) return NotWritten(file);
  return Mended(LengthOf(facts->Sound, bytes));
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
