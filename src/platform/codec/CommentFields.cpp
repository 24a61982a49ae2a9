#include "platform/codec/CommentFields.h"

#include <cstdint>
#include <optional>

#include "platform/codec/Bytes.h"

namespace kestrune::platform {
namespace {

void AppendComment(std::string& comments, std::uint32_t& count, std::string_view name,
                   const std::string& text) {
  if (text.empty()) return;
  AppendLe(comments, name.size() + 1 + text.size(), 4);
  comments += name;
  comments += '=';
  comments += text;
  ++count;
}

}  // namespace

std::string CommentFields(std::string_view vendor, const TagTexts& texts) {
  std::string comments;
  std::uint32_t count = 0;
  AppendComment(comments, count, "ARTIST", texts.Artist);
  AppendComment(comments, count, "TITLE", texts.Title);
  AppendComment(comments, count, "COMMENT", texts.Comment);
  AppendComment(comments, count, "ENCODER", texts.Encoder);

  vendor = vendor.substr(0, kMaxVendor);
  std::string fields;
  AppendLe(fields, vendor.size(), 4);
  fields += vendor;
  AppendLe(fields, count, 4);
  fields += comments;
  return fields;
}

FoundTags ReadCommentFields(std::string_view fields) {
  FoundTags found;
  std::size_t at = 0;
  const auto number = [&]() -> std::optional<std::size_t> {
    if (fields.size() - at < 4) return std::nullopt;
    at += 4;
    return static_cast<std::size_t>(ReadLe(fields, at - 4, 4));
  };
  const auto text = [&]() -> std::optional<std::string_view> {
    const auto size = number();
    if (!size || *size > fields.size() - at) return std::nullopt;
    at += *size;
    return fields.substr(at - *size, *size);
  };
  if (!text()) return found;
  for (std::size_t left = number().value_or(0); left > 0; --left) {
    const auto comment = text();
    if (!comment) break;
    if (comment->starts_with("ARTIST=")) found.Artist = CleanTagText(comment->substr(7));
    if (comment->starts_with("TITLE=")) found.Title = CleanTagText(comment->substr(6));
  }
  return found;
}

}  // namespace kestrune::platform
