#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "platform/ServiceManager.h"

namespace kestrune::test {

class FakeServiceManager final : public platform::ServiceManager {
 public:
  [[nodiscard]] bool Listens() const override { return Listening; }
  [[nodiscard]] std::chrono::milliseconds Patience() const override { return Patient; }
  [[nodiscard]] bool Tell(const News& news) override {
    if (Deaf) return false;
    All.push_back(news);
    WhenTold();
    return true;
  }

  [[nodiscard]] int Readies() const {
    int count = 0;
    for (const News& news : All) count += news.Ready ? 1 : 0;
    return count;
  }
  /// The last one told.
  [[nodiscard]] std::string Status() const {
    std::string status;
    for (const News& news : All) {
      if (!news.Status.empty()) status = news.Status;
    }
    return status;
  }

  bool Listening = true;
  std::chrono::milliseconds Patient{0};
  bool Deaf = false;  ///< nothing gets there
  std::vector<News> All;
  std::function<void()> WhenTold = [] {};
};

}  // namespace kestrune::test
