#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrune::test {

/// What a program said and how it ended.
struct Outcome {
  int Status = -1;
  std::string Output;  ///< standard output
};
Outcome RunProgram(const std::string& command);
/// With standard error in the output too.
Outcome RunProgramAll(const std::string& command);

/// Interleaved samples as ffmpeg, oggdec, flac, opusdec (at 48000 Hz) or sox decode the file. `options` come before the input: for
/// files without a header. Empty if the program fails.
std::vector<std::int16_t> DecodeWithFfmpeg(const std::string& path, const std::string& options = {});
std::vector<std::int16_t> DecodeWithOggdec(const std::string& path);
std::vector<std::int16_t> DecodeWithFlac(const std::string& path);
std::vector<std::int16_t> DecodeWithOpusdec(const std::string& path);
std::vector<std::int16_t> DecodeWithSox(const std::string& path, const std::string& options = {});

/// ffprobe's facts on stream and format: "codec_name", "sample_rate", "channels", "bit_rate", "TAG:artist"
/// ...
std::map<std::string, std::string> Probe(const std::string& path);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);

/// A folder that goes with all it holds.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] std::string Path(const std::string& name) const { return folder_ + "/" + name; }
  /// One that was not handed out before, with this extension ("wav").
  std::string NewPath(const std::string& extension) {
    return Path(std::to_string(handedOut_++) + "." + extension);
  }

 private:
  std::string folder_;
  int handedOut_ = 0;
};

}  // namespace kestrune::test
