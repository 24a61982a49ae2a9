#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/SoundSource.h"

namespace kestrune::platform {

/// Sound from a PulseAudio server, or one that speaks its protocol, as PipeWire does.
///
/// 1. A device's id is the server's name of the source. Inputs come first, then the monitors of outputs, each
///    sorted by description and then by id.
/// 2. The server's thread is the only one that calls the sink, about each 50 ms.
/// 3. The server may not move the stream to another device: a recording of the radio never turns into one of the
///    microphone. If the device or the server goes away, or the source is suspended, the sound of that time is
///    counted as lost, by the clock; the way back is tried each second.
/// 4. A hole that the server leaves within the stream is counted as lost and filled with silence, so that what
///    follows stays at its time.
/// 5. A server is started only where the user's own configuration of the client library says so.
class PulseSource final : public SoundSource {
 public:
  /// Talks to the server of that address, in the form of the variable PULSE_SERVER; an empty one leaves the
  /// choice to the user's configuration.
  explicit PulseSource(std::string server = {});
  ~PulseSource() override;

  /// Whether a server answers. Waits 5 s at most.
  [[nodiscard]] bool Reachable();

  [[nodiscard]] std::vector<SoundDevice> Devices() override;
  /// Waits 5 s at most, as Devices does.
  [[nodiscard]] bool Usable(const std::string& id) override;
  /// Waits half a second at most.
  [[nodiscard]] std::string Open(const std::string& id, const PcmFormat& format, SampleSink& sink) override;
  void Close() override;

 private:
  class Connection;
  std::unique_ptr<Connection> connection_;
};

}  // namespace kestrune::platform
