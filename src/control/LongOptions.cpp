#include "control/LongOptions.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>

#include "control/ConsoleText.h"

namespace kestrune::control {
namespace {

std::string Usage(const LongOption& option) {
  return option.ValueName.empty() ? std::string(option.Name)
                                  : fmt::format("{} {}", option.Name, option.ValueName);
}

}  // namespace

OptionsRead ReadLongOptions(std::span<const LongOption> allowed, std::span<const std::string> arguments) {
  OptionsRead read;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view word = arguments[i];
    if (word == "--") {
      read.Rest.insert(read.Rest.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                       arguments.end());
      break;
    }
    if (!word.starts_with("--")) {
      read.Rest.emplace_back(word);
      continue;
    }
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const auto option = std::find_if(allowed.begin(), allowed.end(),
                                     [name](const LongOption& one) { return one.Name == name; });
    if (option == allowed.end()) {
      read.Error = fmt::format("unknown option {}", Quoted(name));
      break;
    }
    if (option->ValueName.empty()) {
      if (equals != std::string_view::npos) {
        read.Error = fmt::format("{} takes no value", name);
        break;
      }
      read.Given.push_back({option->Name, {}});
    } else if (equals != std::string_view::npos) {
      read.Given.push_back({option->Name, std::string(word.substr(equals + 1))});
    } else if (i + 1 < arguments.size()) {
      read.Given.push_back({option->Name, arguments[++i]});
    } else {
      read.Error = fmt::format("{} needs a value: {}", name, Usage(*option));
      break;
    }
  }
  return read;
}

std::string OptionsHelp(std::span<const LongOption> options) {
  std::string help;
  for (const LongOption& option : options) help += fmt::format("  {:<27} {}\n", Usage(option), option.Help);
  return help;
}

}  // namespace kestrune::control
