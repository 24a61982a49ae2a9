// A filename format of anybody's making and texts of a stranger's: the song must stay below its folder, under
// names that a file system takes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/RadioText.h"
#include "base/Text.h"
#include "recorder/SongName.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

/// The next piece of the input, up to a line end.
std::string Take(std::string_view& input) {
  const std::size_t end = input.find('\n');
  std::string piece(input.substr(0, end));
  input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
  return piece;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrune;
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string format = Take(input);
  recorder::SongNameValues values;
  // The radio's fields are 16 bytes long.
  const auto field = [&input] { return base::RadioTextToUtf8(Take(input).substr(0, 16)); };
  values.Artist = field();
  values.Song = field();
  values.Station = field();
  values.Genre = field();
  values.Channel = static_cast<std::int16_t>(size % 256);

  const recorder::SongName name = recorder::BuildSongName(format, "/music/", "mp3", values);
  Require(name.Folder.starts_with("/music/") && name.Folder.ends_with('/'));
  Require(name.FileName.starts_with(name.Folder));
  Require(name.FileName.find("//") == std::string::npos);
  for (const std::string& component : base::Split(name.FileName, '/')) {
    Require(component != "." && component != "..");
    Require(component.size() <= 255);
    for (const char byte : component) Require(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F);
  }
  Require(name.FileName.size() - name.Folder.size() + std::string_view(" (Incomplete).mp3").size() <= 255);
  return 0;
}
