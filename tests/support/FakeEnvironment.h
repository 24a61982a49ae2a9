#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/Environment.h"

namespace kestrune::test {

/// An environment of plain fields. Variables are looked up with their case, as given.
class FakeEnvironment final : public platform::Environment {
 public:
  [[nodiscard]] std::string Variable(std::string_view name) const override {
    const auto found = Variables.find(name);
    return found == Variables.end() ? std::string() : found->second;
  }
  [[nodiscard]] std::string ExecutableFolder() const override { return Executable; }
  [[nodiscard]] std::string DefaultRecordingFolder() const override { return Recordings; }
  [[nodiscard]] std::string CommandLine() const override { return Command; }

  std::map<std::string, std::string, std::less<>> Variables{
      {"userprofile", "/home/user"}, {"temp", "/tmp"}, {"Temp", "/tmp"}};
  std::string Executable = "/opt/kestrune";
  std::string Recordings = "/home/user/Music/Kestrune";
  std::string Command;
};

}  // namespace kestrune::test
