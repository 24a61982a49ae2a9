#include "presenters/FilenameFormatSelect.h"

#include "base/Text.h"

namespace kestrune::presenters {
namespace {

constexpr FilenameFormatRow kRows[] = {
    {"%a - %s", R"(Everything in the main File Save folder, songs named "Artist - Song Title.mp3")"},
    {R"(%c - %t\%a - %s)", R"(Separate folder for each channel, songs named "Artist - Song Title.mp3")"},
    {R"(%a\%a - %s)", R"(Separate folder for each artist, songs named "Artist - Song Title.mp3")"},
    {R"(%g\%a - %s)", R"(Separate folder for each genre, songs named "Artist - Song Title.mp3")"},
    {R"(%c - %t\%d\%a - %s)",
     R"(Separate folder for each channel, separate subfolder with timestamp of start of recording, songs named "Artist - Song Title.mp3")"},
    {R"(%d\%a - %s)",
     R"(Separate folder with timestamp of start of recording, songs named "Artist - Song Title.mp3")"},
    {R"(%g\%c - %t\%a - %s)",
     R"(Separate folder for each genre, separate subfolder for each station, songs named "Artist - Song Title.mp3")"},
    {R"(%d\%n - %a - %s)",
     R"(Separate folder for each recording session, songs named "Counter - Artist - Song Title.mp3")"},
};
constexpr std::size_t kLastMarkedRow = 6;  // one short of the end

}  // namespace

std::span<const FilenameFormatRow> FilenameFormats() {
  return kRows;
}

std::string_view FilenameFormatSelect::Caption(std::size_t row) const {
  const bool marked = row <= kLastMarkedRow &&
                      base::ToLower(base::Trim(kRows[row].Format)) == base::ToLower(txtFilenameFormat_);
  return marked ? "== Selected ==" : "Select";
}

void FilenameFormatSelect::cmdSelect(std::size_t row) {
  choose_(kRows[row].Format);
}

}  // namespace kestrune::presenters
