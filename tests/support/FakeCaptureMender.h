#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "platform/CaptureMender.h"
#include "support/MemoryFiles.h"

namespace kestrune::test {

/// Finds the files in memory, and mends them as a test says: each takes its time, and has no change made to it.
class FakeCaptureMender final : public platform::CaptureMender {
 public:
  FakeCaptureMender(base::EventLoop& loop, MemoryFiles& files)
      : files_(files), tmrAnswer_(loop.MakeTimer(kTakes, [this] { Answer(); })) {}

  /// The beginning of the pattern counts, up to its "*".
  void Find(std::string_view folder, std::string_view pattern, FoundHandler found) override {
    Calls.push_back("Find " + std::string(folder) + " " + std::string(pattern));
    const std::string_view start = pattern.substr(0, pattern.find('*'));
    std::vector<std::string> paths;
    for (const std::string& path : files_.AllFiles()) {
      const std::string_view name = std::string_view(path).substr(path.rfind('/') + 1);
      if (Looked && path.starts_with(folder) && name.starts_with(start)) paths.push_back(path);
    }
    Begin([this, paths, found = std::move(found)] { found(paths, Looked); });
  }

  void Mend(std::string_view path, MendedHandler mended) override {
    Calls.push_back("Mend " + std::string(path));
    const auto answer = Answers.find(std::string(path));
    Begin([capture = answer != Answers.end() ? answer->second : platform::MendedCapture(),
           mended = std::move(mended)] { mended(capture); });
  }

  void Stop() override {
    Calls.emplace_back("Stop");
    tmrAnswer_->SetEnabled(false);
  }

  /// How long each call takes.
  static constexpr std::chrono::milliseconds kTakes{500};
  /// What becomes of a file; of others nothing, as if somebody held them.
  std::map<std::string, platform::MendedCapture> Answers;
  std::vector<std::string> Calls;
  base::Result Looked = base::Result::Done();  ///< how each search goes; one that fails finds nothing

 private:
  void Begin(std::function<void()> answer) {
    answer_ = std::move(answer);
    tmrAnswer_->SetEnabled(true);
  }
  void Answer() {
    tmrAnswer_->SetEnabled(false);
    const std::function<void()> answer = std::exchange(answer_, {});
    answer();
  }

  MemoryFiles& files_;
  std::function<void()> answer_;
  std::unique_ptr<base::Timer> tmrAnswer_;
};

}  // namespace kestrune::test
