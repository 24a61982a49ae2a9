#include "apps/kestrune/Answers.h"

#include <cstdio>

#include <fmt/format.h>

#include "apps/kestrune/RunUnit.h"
#include "base/Version.h"

namespace kestrune::apps {

std::optional<int> AnsweredAtOnce(const control::CommandLine& line) {
  if (!line.Error.empty()) {
    fmt::print(stderr, "kestrune: {}\n{}", line.Error, control::CommandLineUsage());
    return kWrongUse;
  }
  if (line.Chosen.Help) {
    fmt::print("{}", control::CommandLineUsage());
    return kDone;
  }
  if (line.Chosen.Version) {
    fmt::print("kestrune {}.{}.{}\n", base::kVersionMajor, base::kVersionMinor, base::kVersionRevision);
    return kDone;
  }
  return std::nullopt;
}

}  // namespace kestrune::apps
