#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/mixer/LineMixer.h"

namespace kestrune::platform {

class PulseSourceControl;

/// The recording lines of a source of a PulseAudio server, or of one that speaks its protocol.
///
/// 1. The lines are the source's ports; a source without ports is one line itself.
/// 2. The server keeps one volume for each source, that of the active port: only this line has volume and balance.
/// 3. The selected line is the active port of a source that is not muted. Selecting a line makes its port the
///    active one and ends the mute; taking the selection away mutes the source.
/// 4. A call waits a second at most for the server. While the server is gone there are no lines.
class PulseMixer final : public LineMixer {
 public:
  /// Talks to the server of that address, in the form of the variable PULSE_SERVER; an empty one leaves the
  /// choice to the user's configuration.
  explicit PulseMixer(const std::string& server = {});
  explicit PulseMixer(std::unique_ptr<PulseSourceControl> source);
  ~PulseMixer() override;

  void Open(const std::string& device) override;
  void Close() override;
  [[nodiscard]] bool Update() override;

 private:
  void WriteVolume(std::size_t line, std::int32_t volume) override;
  void WriteBalance(std::size_t line, std::int16_t balance) override;
  void WriteSelected(std::size_t line, bool selected) override;
  void Read();

  std::unique_ptr<PulseSourceControl> source_;
  float balance_ = 0;  // -1 left, 1 right; silence has no balance, so the last one is kept
};

}  // namespace kestrune::platform
