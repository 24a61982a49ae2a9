#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/SoundSource.h"

namespace kestrune::platform {

/// Sound from a named pipe or a file of raw samples: signed 16-bit little-endian, 44100 Hz, left and right in
/// turn. It has one device, the path.
///
/// 1. A named pipe is taken as fast as its writer fills it; the writer keeps the time. When the writer closes it,
///    the source waits for the next one, and reports no sound of that time as lost.
/// 2. Anything else is read from its beginning at each Open and paced by the clock. At the end it falls silent.
/// 3. A thread of its own calls the sink. Another format than the file's own is converted.
class PipeSource final : public SoundSource {
 public:
  static constexpr PcmFormat kFileFormat{44100, 2};

  /// Its device has that name for people; the path where that is empty.
  explicit PipeSource(std::string path, std::string name = {});
  ~PipeSource() override;

  [[nodiscard]] std::vector<SoundDevice> Devices() override;
  [[nodiscard]] bool Usable(const std::string& id) override;
  [[nodiscard]] std::string Open(const std::string& id, const PcmFormat& format, SampleSink& sink) override;
  void Close() override;

 private:
  class Reader;
  const std::string path_;
  const std::string name_;
  std::unique_ptr<Reader> reader_;
};

}  // namespace kestrune::platform
