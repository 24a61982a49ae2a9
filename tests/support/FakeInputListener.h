#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/InputListener.h"

namespace kestrune::test {

/// Inputs that bring what a test puts into them; a device with an error does not open.
class FakeInputListener final : public platform::InputListener {
 public:
  [[nodiscard]] bool Shares() const override { return Sharing; }
  base::Result Open(const std::string& id, const platform::PcmFormat& format) override {
    Opened.push_back(id);
    OpenId = id;
    OpenFormat = format;
    Waiting.clear();
    const auto error = Errors.find(id);
    return error == Errors.end() ? base::Result::Done() : base::Result::Failed(error->second);
  }
  void Close() override { OpenId.clear(); }
  [[nodiscard]] std::vector<std::int16_t> Take() override {
    if (OpenId.empty()) return {};
    return std::exchange(Waiting, {});
  }

  bool Sharing = true;
  std::map<std::string, std::string> Errors;
  std::string OpenId;  ///< empty while nothing is open
  platform::PcmFormat OpenFormat;
  std::vector<std::string> Opened;
  std::vector<std::int16_t> Waiting;
};

}  // namespace kestrune::test
