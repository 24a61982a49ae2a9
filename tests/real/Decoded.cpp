#include "real/Decoded.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "real/Process.h"

namespace kestrune::test {
namespace {

std::vector<std::int16_t> SamplesOf(const std::string& bytes) {
  std::vector<std::int16_t> samples(bytes.size() / 2);
  std::memcpy(samples.data(), bytes.data(), samples.size() * 2);
  return samples;
}

std::vector<std::int16_t> SamplesOf(const Outcome& outcome) {
  return outcome.Exit == 0 ? SamplesOf(outcome.Output) : std::vector<std::int16_t>();
}

Decoded WithShapeOf(const std::string& path) {
  std::map<std::string, std::string> facts = Probe(path);
  return {std::max(1, std::atoi(facts["sample_rate"].c_str())),
          std::max(1, std::atoi(facts["channels"].c_str())),
          {}};
}

}  // namespace

std::vector<std::int16_t> Decoded::Mono() const {
  std::vector<std::int16_t> mono;
  mono.reserve(Frames());
  for (std::size_t i = 0; i < Samples.size(); i += static_cast<std::size_t>(Channels)) {
    mono.push_back(Samples[i]);
  }
  return mono;
}

Decoded DecodeWithFfmpeg(const std::string& path) {
  Decoded decoded = WithShapeOf(path);
  decoded.Samples =
      SamplesOf(RunToEnd({"ffmpeg", {"-nostdin", "-v", "error", "-i", path, "-f", "s16le", "-"}, {}}));
  return decoded;
}

Decoded DecodeWithOggdec(const std::string& path) {
  Decoded decoded = WithShapeOf(path);
  decoded.Samples = SamplesOf(RunToEnd({"oggdec", {"-Q", "-R", "-b", "16", "-e", "0", "-o", "-", path}, {}}));
  return decoded;
}

Decoded DecodeWithOpusdec(const std::string& path) {
  Decoded decoded = WithShapeOf(path);
  decoded.Samples =
      SamplesOf(RunToEnd({"opusdec", {"--quiet", "--no-dither", "--rate", "48000", path, "-"}, {}}));
  return decoded;
}

Decoded DecodeWithSox(const std::string& path, const std::vector<std::string>& nature, int rate,
                      int channels) {
  std::vector<std::string> arguments{"-V1", "-D"};
  arguments.insert(arguments.end(), nature.begin(), nature.end());
  for (const char* word : {path.c_str(), "-t", "raw", "-e", "signed", "-b", "16", "-L", "-"}) {
    arguments.emplace_back(word);
  }
  return {rate, channels, SamplesOf(RunToEnd({"sox", arguments, {}}))};
}

Decoded ReadRaw(const std::string& path, int rate, int channels) {
  std::ifstream file(path, std::ios::binary);
  return {rate, channels, SamplesOf(std::string(std::istreambuf_iterator<char>(file), {}))};
}

std::map<std::string, std::string> Probe(const std::string& path) {
  const Outcome outcome = RunToEnd(
      {"ffprobe", {"-v", "error", "-show_streams", "-show_format", "-of", "default=nw=1", path}, {}});
  std::map<std::string, std::string> facts;
  std::istringstream lines(outcome.Output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t split = line.find('=');
    if (split == std::string::npos) continue;
    std::string name = line.substr(0, split);
    if (name.starts_with("TAG:")) {
      std::transform(name.begin() + 4, name.end(), name.begin() + 4,
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    }
    // Containers keep their tags with the file or with its stream; those printed last are the file's.
    const std::string value = line.substr(split + 1);
    if (value != "N/A") facts[name] = value;
  }
  return facts;
}

}  // namespace kestrune::test
