#include "platform/codec/Id3Tag.h"

#include <cstdint>
#include <string_view>

#include "base/Ignored.h"
#include "platform/codec/Bytes.h"

namespace kestrune::platform {
namespace {

constexpr std::size_t kHeaderBytes = 10;
constexpr std::size_t kFrameHeaderBytes = 10;
constexpr std::size_t kId3v1Bytes = 128;
constexpr char kUtf8 = 3;
static_assert(kHeaderBytes + 4 * (kFrameHeaderBytes + 5 + kMaxTagText) <= kTagRoom);

/// Seven bits a byte, so that no size looks like the start of an MPEG frame.
void AppendSyncSafe(std::string& bytes, std::size_t value) {
  for (int shift = 21; shift >= 0; shift -= 7) bytes.push_back(static_cast<char>(value >> shift & 0x7FU));
}

std::string Header() {
  std::string header("ID3\x04\x00\x00", 6);
  AppendSyncSafe(header, kTagRoom - kHeaderBytes);
  return header;
}

void AppendFrame(std::string& tag, std::string_view name, std::string_view intro, const std::string& text) {
  if (text.empty()) return;
  tag += name;
  AppendSyncSafe(tag, 1 + intro.size() + text.size());
  tag.append(2, '\0');  // flags
  tag += kUtf8;
  tag += intro;
  tag += text;
}

void AppendField(std::string& tag, std::string_view text, std::size_t bytes) {
  std::string field = ToLatin1(text).substr(0, bytes);
  field.resize(bytes, '\0');
  tag += field;
}

std::string Id3v1Tag(const TagTexts& texts) {
  std::string tag = "TAG";
  AppendField(tag, texts.Title, 30);
  AppendField(tag, texts.Artist, 30);
  AppendField(tag, {}, 30);  // album
  AppendField(tag, {}, 4);   // year
  AppendField(tag, texts.Comment, 30);
  tag += '\xFF';  // no genre
  return tag;
}

}  // namespace

std::string Id3v2Tag(const TagTexts& texts) {
  std::string tag = Header();
  AppendFrame(tag, "TPE1", {}, texts.Artist);
  AppendFrame(tag, "TIT2", {}, texts.Title);
  AppendFrame(tag, "COMM", std::string_view("eng\0", 4), texts.Comment);
  AppendFrame(tag, "TENC", {}, texts.Encoder);
  tag.resize(kTagRoom, '\0');
  return tag;
}

std::optional<FoundTags> ReadId3(const DiskFile& file) {
  const auto tag = file.ReadAt(0, kTagRoom);
  if (!tag || !tag->starts_with(Header())) return std::nullopt;
  FoundTags found;
  for (std::size_t at = kHeaderBytes; at + kFrameHeaderBytes < tag->size();) {
    std::size_t size = 0;
    for (std::size_t i = 4; i < 8; ++i)
      size = size << 7 | (static_cast<unsigned char>((*tag)[at + i]) & 0x7FU);
    const std::size_t textAt = at + kFrameHeaderBytes;
    if (size == 0 || size > tag->size() - textAt) break;
    const std::string_view name = std::string_view(*tag).substr(at, 4);
    // The first byte names the encoding.
    const std::string_view text = std::string_view(*tag).substr(textAt + 1, size - 1);
    if (name == "TPE1") found.Artist = CleanTagText(text);
    if (name == "TIT2") found.Title = CleanTagText(text);
    at = textAt + size;
  }
  return found;
}

bool WriteId3(DiskFile& file, const TagTexts& texts) {
  const auto head = file.ReadAt(0, kHeaderBytes);
  if (head != Header() || file.Size() < static_cast<std::int64_t>(kTagRoom)) return false;
  if (!file.WriteAt(0, AsBytes(Id3v2Tag(texts)))) return false;

  const std::string end = Id3v1Tag(texts);
  const std::int64_t endAt = file.Size() - static_cast<std::int64_t>(kId3v1Bytes);
  const auto oldEnd = file.ReadAt(endAt, kId3v1Bytes);
  if (endAt >= static_cast<std::int64_t>(kTagRoom) && oldEnd && oldEnd->starts_with("TAG")) {
    base::Ignored(file.WriteAt(endAt, AsBytes(end)));
  } else {
    base::Ignored(file.Append(AsBytes(end)));
  }
  return true;
}

}  // namespace kestrune::platform
