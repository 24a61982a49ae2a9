#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/FileSync.h"

namespace kestrune::test {

/// Keeps the paths that were to be brought to the disk, in their order.
class FakeFileSync final : public platform::FileSync {
 public:
  void Sync(std::string_view path) override { Synced.emplace_back(path); }
  void SetFailureHandler(FailureHandler handler) override { handler_ = std::move(handler); }

  /// The disk did not take the file.
  void Fail(const std::string& path, const std::string& cause) {
    if (handler_) handler_(path, base::Result::Failed(cause));
  }

  std::vector<std::string> Synced;

 private:
  FailureHandler handler_;
};

}  // namespace kestrune::test
