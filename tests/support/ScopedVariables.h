#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kestrune::test {

/// Sets environment variables of the test's own process, and puts them back as they were when it goes.
class ScopedVariables {
 public:
  using Variables = std::vector<std::pair<std::string, std::string>>;

  explicit ScopedVariables(const Variables& variables) {
    for (const auto& [name, value] : variables) {
      const char* before = std::getenv(name.c_str());
      before_.emplace_back(name, before != nullptr ? std::optional<std::string>(before) : std::nullopt);
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  ~ScopedVariables() {
    for (const auto& [name, value] : before_) {
      if (value.has_value()) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
  }
  ScopedVariables(const ScopedVariables&) = delete;
  ScopedVariables& operator=(const ScopedVariables&) = delete;

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

}  // namespace kestrune::test
