#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/mixer/LineMixer.h"

namespace kestrune::platform {

/// The mixer for sound that does not come from a card: it has no lines.
class NoMixer final : public LineMixer {
 public:
  void Open(const std::string& /*device*/) override {}
  void Close() override {}
  [[nodiscard]] bool Update() override { return false; }

 private:
  void WriteVolume(std::size_t /*line*/, std::int32_t /*volume*/) override {}
  void WriteBalance(std::size_t /*line*/, std::int16_t /*balance*/) override {}
  void WriteSelected(std::size_t /*line*/, bool /*selected*/) override {}
};

}  // namespace kestrune::platform
