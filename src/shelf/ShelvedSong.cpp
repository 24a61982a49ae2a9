#include "shelf/ShelvedSong.h"

namespace kestrune::shelf {
namespace {

/// Takes " (2)" away from the end.
std::string_view WithoutCounter(std::string_view name) {
  const std::size_t open = name.rfind(" (");
  if (open == std::string_view::npos || !name.ends_with(')')) return name;
  const std::string_view digits = name.substr(open + 2, name.size() - open - 3);
  const bool number = !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
  return number ? name.substr(0, open) : name;
}

}  // namespace

void ReadName(std::string_view fileName, ShelvedSong& song) {
  std::string_view name = WithoutCounter(fileName.substr(0, fileName.rfind('.')));
  song.Incomplete = name.ends_with(kIncompleteSuffix);
  if (song.Incomplete) name.remove_suffix(kIncompleteSuffix.size());
  constexpr std::string_view kBetween = " - ";
  const std::size_t between = name.find(kBetween);
  song.Artist = between == std::string_view::npos ? std::string_view() : name.substr(0, between);
  song.Title = between == std::string_view::npos ? name : name.substr(between + kBetween.size());
}

}  // namespace kestrune::shelf
