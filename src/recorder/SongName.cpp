#include "recorder/SongName.h"

#include <array>

#include <fmt/format.h>

#include "base/DatePattern.h"
#include "base/Numbers.h"
#include "base/Text.h"

namespace kestrune::recorder {
namespace {

// Not allowed in a name; each becomes a hyphen, in this order.
constexpr std::string_view kForbidden = "|<>^+=?/\":;*$%@";

// What a file system takes for one component (NAME_MAX), in bytes.
constexpr std::size_t kComponentBytes = 255;
// " (Incomplete)", the point, and the digits that tell duplicates apart.
constexpr std::size_t kSuffixRoom = 13 + 1 + 8;

/// Control characters, the C1 ones of UTF-8 among them, become hyphens: a tab would turn into a separator
/// below, and none of them belongs in a name.
std::string WithoutControls(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool c1 = byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) >= 0x80 &&
                    static_cast<unsigned char>(text[i + 1]) <= 0x9F;
    if (c1) ++i;
    result += c1 || byte < 0x20 || byte == 0x7F ? '-' : text[i];
  }
  return result;
}

/// "." and ".." would leave the folder, and any other leading point would hide the song.
std::string WithoutLeadingDots(std::string component) {
  for (std::size_t i = 0; i < component.size() && component[i] == '.'; ++i) component[i] = '-';
  return component;
}

std::string ExpandPlaceholders(std::string text, const SongNameValues& values) {
  const std::array<std::pair<std::string_view, std::string>, 7> placeholders{{
      {"%a", WithoutControls(values.Artist)},
      {"%s", WithoutControls(values.Song)},
      {"%c", std::to_string(values.Channel)},
      {"%t", WithoutControls(values.Station)},
      {"%g", WithoutControls(values.Genre)},
      {"%d", base::FormatDate(values.SessionStart, "yyyymmdd_hhnn")},
      {"%n", fmt::format("{:03}", values.Recorded)},
  }};
  // One after the other: an artist that holds "%s" is expanded further.
  for (const auto& [placeholder, value] : placeholders)
    text = base::ReplaceAllNoCase(text, placeholder, value);
  return text;
}

}  // namespace

SongName BuildSongName(std::string_view filenameFormat, std::string_view fileDir, std::string_view extension,
                       const SongNameValues& values) {
  // The format's own separators travel as tabs, so that a backslash in an artist's name is not taken for one.
  std::string text = base::ReplaceAll(filenameFormat, "\\", "\t");
  text = ExpandPlaceholders(std::move(text), values);
  text = base::ReplaceAll(text, "\\", "-");
  for (const char forbidden : kForbidden) text = base::ReplaceAll(text, std::string_view(&forbidden, 1), "-");

  std::vector<std::string> components = base::Split(text, '\t');
  std::string name = WithoutLeadingDots(WithoutControls(components.back()));
  // An empty one would make a hidden file; it becomes what no artist and no title give.
  if (name.empty()) name = " - ";
  components.pop_back();

  std::string folder(fileDir);
  for (const std::string& component : components) {
    const std::string clean = WithoutControls(component);
    const std::string_view cut = base::TruncateUtf8(base::Trim(clean), kComponentBytes);
    folder += "/" + WithoutLeadingDots(std::string(base::Trim(cut)));
  }
  folder += "/";
  while (folder.find("//") != std::string::npos) folder = base::ReplaceAll(folder, "//", "/");

  const std::size_t nameBytes = kComponentBytes - kSuffixRoom - std::min(extension.size(), kSuffixRoom);
  return {.Folder = folder, .FileName = folder + std::string(base::TruncateUtf8(name, nameBytes))};
}

std::string FormatSeconds(std::int64_t seconds) {
  return base::SixtiesText(seconds);
}

}  // namespace kestrune::recorder
