#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/SoundSource.h"

namespace kestrune::platform {

/// Sound from an ALSA device, for systems where no sound server runs.
///
/// 1. A device's id is the name of the PCM. "default" comes first, the others follow sorted by id; the PCM that
///    only makes silence is left out.
/// 2. A thread of its own calls the sink. A device that does not have the asked format is opened through ALSA's
///    converting plug.
/// 3. An overrun, a suspended machine and an unplugged device are counted as lost, by the clock; the way back to
///    an unplugged one is tried each second.
class AlsaSource final : public SoundSource {
 public:
  AlsaSource();
  ~AlsaSource() override;

  [[nodiscard]] std::vector<SoundDevice> Devices() override;
  /// Tries to open it, so a device that another program holds is not usable. The one that is open here is.
  [[nodiscard]] bool Usable(const std::string& id) override;
  [[nodiscard]] std::string Open(const std::string& id, const PcmFormat& format, SampleSink& sink) override;
  void Close() override;

 private:
  class Reader;
  std::unique_ptr<Reader> reader_;
  std::string openId_;
};

}  // namespace kestrune::platform
