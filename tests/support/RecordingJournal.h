#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/Journal.h"

namespace kestrune::test {

/// Keeps what is logged, each line in the list of its kind.
class RecordingJournal final : public base::Journal {
 public:
  void DoLog(std::string_view text) override { Log.emplace_back(text); }
  void DebugPrint(std::string_view text) override { Debug.emplace_back(text); }
  [[nodiscard]] bool Tracing() const override { return TraceOpen; }
  void Trace(std::string_view text) override {
    if (TraceOpen) Traced.emplace_back(text);
  }

  std::vector<std::string> Log;
  std::vector<std::string> Debug;
  std::vector<std::string> Traced;
  bool TraceOpen = true;
};

}  // namespace kestrune::test
