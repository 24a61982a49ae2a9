#pragma once

#include <string>
#include <string_view>

namespace kestrune::base {

/// What a list for people is sorted by: the text in small letters, accents and ligatures of Windows-1252 spelt in plain
/// letters, so that "Été" stands beside "Eternal". Other characters and bytes that are not UTF-8 are kept.
[[nodiscard]] std::string SortText(std::string_view text);

}  // namespace kestrune::base
