#pragma once

#include <cstdlib>
#include <string>

namespace kestrune::platform {

/// While it lives, the environment names no session manager, so that an application of Qt that is made meanwhile
/// becomes no client of one. See SessionEnd. Not while other threads run, since they may read the environment.
class HiddenSessionManager {
 public:
  HiddenSessionManager() {
    const char* address = std::getenv(kName);
    if (address == nullptr) return;
    address_ = address;
    ::unsetenv(kName);
  }
  ~HiddenSessionManager() {
    if (!address_.empty()) ::setenv(kName, address_.c_str(), 1);
  }
  HiddenSessionManager(const HiddenSessionManager&) = delete;
  HiddenSessionManager& operator=(const HiddenSessionManager&) = delete;

 private:
  static constexpr const char* kName = "SESSION_MANAGER";

  std::string address_;
};

}  // namespace kestrune::platform
