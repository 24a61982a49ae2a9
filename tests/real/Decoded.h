#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrune::test {

/// Sound as an independent decoder gives it, as 16-bit samples at the file's own rate.
struct Decoded {
  int Rate = 0;
  int Channels = 0;
  std::vector<std::int16_t> Samples;  ///< interleaved; empty if the decoder refused the file

  [[nodiscard]] std::size_t Frames() const { return Samples.size() / static_cast<std::size_t>(Channels); }
  [[nodiscard]] double Seconds() const { return static_cast<double>(Frames()) / Rate; }
  /// The first channel.
  [[nodiscard]] std::vector<std::int16_t> Mono() const;
};

/// A file with a header, by ffmpeg.
[[nodiscard]] Decoded DecodeWithFfmpeg(const std::string& path);
/// By oggdec.
[[nodiscard]] Decoded DecodeWithOggdec(const std::string& path);
/// By opusdec, at 48000 Hz.
[[nodiscard]] Decoded DecodeWithOpusdec(const std::string& path);
/// A file without a header, whose format sox is given, such as {"-t", "vox", "-r", "8000"}.
[[nodiscard]] Decoded DecodeWithSox(const std::string& path, const std::vector<std::string>& nature, int rate,
                                    int channels);
/// A file of 16-bit samples without a header.
[[nodiscard]] Decoded ReadRaw(const std::string& path, int rate, int channels);

/// What ffprobe says of a file: "codec_name", "sample_rate", "channels", "TAG:artist" ..., the names in small
/// letters after "TAG:".
[[nodiscard]] std::map<std::string, std::string> Probe(const std::string& path);

}  // namespace kestrune::test
