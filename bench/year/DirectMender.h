#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/codec/WorkerCaptureMender.h"
#include "support/SimulatedEventLoop.h"

namespace kestrune::test {

/// Mends real captures without a thread: within the call, so that two runs are the same. It answers from the loop.
class DirectMender final : public platform::CaptureMender {
 public:
  explicit DirectMender(SimulatedEventLoop& loop) : loop_(loop) {}

  /// The beginning of the pattern counts, up to its "*".
  void Find(std::string_view folder, std::string_view pattern, FoundHandler found) override {
    const std::string start(pattern.substr(0, pattern.find('*')));
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file() && entry.path().filename().string().starts_with(start))
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    AnswerLater([paths = std::move(paths), found = std::move(found)] { found(paths, base::Result::Done()); });
  }

  void Mend(std::string_view path, MendedHandler mended) override {
    file_.Close();
    AnswerLater([capture = platform::MendCapture(file_, path, std::stop_token()),
                 mended = std::move(mended)] { mended(capture); });
  }

  void Stop() override {
    file_.Close();
    session_ = std::make_shared<int>(0);
  }

 private:
  void AnswerLater(std::function<void()> answer) {
    loop_.Post([session = std::weak_ptr<int>(session_), answer = std::move(answer)] {
      if (!session.expired()) answer();
    });
  }

  SimulatedEventLoop& loop_;
  platform::DiskFile file_;
  std::shared_ptr<int> session_ = std::make_shared<int>(0);
};

}  // namespace kestrune::test
