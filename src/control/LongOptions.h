#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune::control {

/// One long option of a program.
struct LongOption {
  std::string_view Name;       ///< with its two dashes
  std::string_view ValueName;  ///< as the usage shows it; empty for a switch
  std::string_view Help;
};

struct GivenOption {
  std::string_view Name;  ///< of the table
  std::string Value;
};

struct OptionsRead {
  std::vector<GivenOption> Given;  ///< in the order of the command line
  std::vector<std::string> Rest;   ///< the other words
  std::string Error;               ///< names the option that is wrong; empty if none is
};

/// Takes the words that begin with "--" and their values, which are the next word or follow "=". A bare
/// "--" ends the options. Words that begin otherwise are left alone.
[[nodiscard]] OptionsRead ReadLongOptions(std::span<const LongOption> allowed,
                                          std::span<const std::string> arguments);

/// One aligned line an option, for a usage text.
[[nodiscard]] std::string OptionsHelp(std::span<const LongOption> options);

}  // namespace kestrune::control
