#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrune::base {

/// The words of a command line. Blanks separate them; within double quotes a blank belongs to the word, and a
/// backslash there stands before a quote or a backslash that is meant as such. A quote without its partner lasts
/// to the end of the text.
[[nodiscard]] std::vector<std::string> SplitWords(std::string_view commandLine);

/// One word in quotes, so that SplitWords returns exactly that word.
[[nodiscard]] std::string QuoteWord(std::string_view word);

}  // namespace kestrune::base
