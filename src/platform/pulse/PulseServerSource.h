#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/pulse/PulseSourceControl.h"

namespace kestrune::platform {

/// A source of a running server. It has no thread: messages of the server are handled in Update and during the waits,
/// which take a second at most. A server that is not there is tried again each second; none is ever started.
class PulseServerSource final : public PulseSourceControl {
 public:
  /// The address as in the variable PULSE_SERVER; empty leaves the choice to the user's configuration.
  explicit PulseServerSource(const std::string& server);
  ~PulseServerSource() override;

  void Open(const std::string& source) override;
  void Close() override;
  [[nodiscard]] bool Update() override;
  [[nodiscard]] const std::optional<PulseSourceState>& State() const override;

  void SetPort(const std::string& name) override;
  void SetVolume(const pa_cvolume& volume) override;
  void SetMute(bool muted) override;

 private:
  class Connection;
  std::unique_ptr<Connection> connection_;
};

}  // namespace kestrune::platform
