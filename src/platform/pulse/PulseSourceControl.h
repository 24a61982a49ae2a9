#pragma once

#include <optional>
#include <string>
#include <vector>

#include <pulse/channelmap.h>
#include <pulse/volume.h>

namespace kestrune::platform {

struct PulsePort {
  std::string Name;         ///< for the server
  std::string Description;  ///< for people
};

/// A source of the server, in the state that the server reported last.
struct PulseSourceState {
  std::string Description;
  std::vector<PulsePort> Ports;
  std::string ActivePort;
  pa_cvolume Volume{};
  pa_channel_map Channels{};
  bool Muted = false;
};

/// One source of a sound server, to read and to set.
class PulseSourceControl {
 public:
  virtual ~PulseSourceControl() = default;

  /// By the server's name; empty means the server's default source.
  virtual void Open(const std::string& source) = 0;
  virtual void Close() = 0;
  /// Handles what the server has sent; true if the state may have changed. Does not wait.
  [[nodiscard]] virtual bool Update() = 0;
  /// Nothing while there is no such source.
  [[nodiscard]] virtual const std::optional<PulseSourceState>& State() const = 0;

  // Each waits for the server to do it, and for the state that results.
  virtual void SetPort(const std::string& name) = 0;
  virtual void SetVolume(const pa_cvolume& volume) = 0;
  virtual void SetMute(bool muted) = 0;
};

}  // namespace kestrune::platform
