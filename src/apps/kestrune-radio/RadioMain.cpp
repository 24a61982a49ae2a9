#include <iostream>
#include <string_view>
#include <vector>

#include "apps/kestrune-radio/RadioOptions.h"
#include "apps/kestrune-radio/RadioRun.h"

int main(int argumentCount, char** arguments) {
  using namespace kestrune::radio_program;
  const std::vector<std::string_view> given(arguments + 1, arguments + argumentCount);
  const auto [options, error] = ParseRadioOptions(given);
  if (!error.empty()) {
    std::cerr << "kestrune-radio: " << error << "\n" << RadioUsage();
    return 2;
  }
  if (options.Help) {
    std::cout << RadioUsage();
    return 0;
  }
  if (options.Version) {
    std::cout << "kestrune-radio " KESTRUNE_VERSION "\n";
    return 0;
  }
  return RunRadio(options);
}
