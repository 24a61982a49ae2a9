#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/mixer/LineMixer.h"

namespace kestrune::platform {

/// The capture controls of the card that an ALSA device belongs to.
///
/// 1. A line is a control with a capture volume or a capture switch, or one choice of a control that chooses
///    between sources.
/// 2. A line without a capture switch cannot be selected: it is always recorded.
/// 3. When a card is unplugged its lines are gone, also if a write is what finds out; the card is looked for each second.
class AlsaMixer final : public LineMixer {
 public:
  AlsaMixer();
  ~AlsaMixer() override;

  /// The device's id is the name of a PCM.
  void Open(const std::string& device) override;
  void Close() override;
  [[nodiscard]] bool Update() override;

  /// Names under which the card of a PCM may be controlled, the most likely one first.
  [[nodiscard]] static std::vector<std::string> CardNames(const std::string& device);

 private:
  struct Card;

  void WriteVolume(std::size_t line, std::int32_t volume) override;
  void WriteBalance(std::size_t line, std::int16_t balance) override;
  void WriteSelected(std::size_t line, bool selected) override;
  void WriteSides(std::size_t line, std::int32_t volume, std::int16_t balance);
  void TakeIn(int error);
  [[nodiscard]] bool Attach();
  void Read();

  std::unique_ptr<Card> card_;
  std::string device_;
  bool open_ = false;
  std::chrono::steady_clock::time_point retryAt_;
  std::map<std::string, std::int16_t> balances_;  // silence has no balance, so the last one is kept
};

}  // namespace kestrune::platform
