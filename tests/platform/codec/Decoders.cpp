#include "platform/codec/Decoders.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <sys/wait.h>
#include <unistd.h>

namespace kestrune::test {
namespace {

std::vector<std::int16_t> Samples(const Outcome& outcome) {
  if (outcome.Status != 0 || outcome.Output.size() < 2) return {};
  std::vector<std::int16_t> samples(outcome.Output.size() / 2);
  std::memcpy(samples.data(), outcome.Output.data(), samples.size() * 2);
  return samples;
}

}  // namespace

Outcome RunProgram(const std::string& command) {
  Outcome outcome;
  std::FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::array<char, 65536> buffer{};
  std::size_t got = 0;
  while ((got = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) {
    outcome.Output.append(buffer.data(), got);
  }
  const int status = ::pclose(pipe);
  outcome.Status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

Outcome RunProgramAll(const std::string& command) {
  return RunProgram(command + " 2>&1");
}

std::vector<std::int16_t> DecodeWithFfmpeg(const std::string& path, const std::string& options) {
  return Samples(RunProgram("ffmpeg -nostdin -v error " + options + " -i '" + path + "' -f s16le -"));
}

std::vector<std::int16_t> DecodeWithOggdec(const std::string& path) {
  return Samples(RunProgram("oggdec -Q -R -b 16 -e 0 -o - '" + path + "'"));
}

std::vector<std::int16_t> DecodeWithFlac(const std::string& path) {
  return Samples(RunProgram("flac -s -d -c --force-raw-format --endian=little --sign=signed '" + path + "'"));
}

std::vector<std::int16_t> DecodeWithOpusdec(const std::string& path) {
  return Samples(RunProgram("opusdec --quiet --no-dither --rate 48000 '" + path + "' -"));
}

std::vector<std::int16_t> DecodeWithSox(const std::string& path, const std::string& options) {
  return Samples(RunProgram("sox -V1 -D " + options + " '" + path + "' -t raw -e signed -b 16 -L -"));
}

std::map<std::string, std::string> Probe(const std::string& path) {
  const Outcome outcome =
      RunProgram("ffprobe -v error -show_streams -show_format -of default=nw=1 '" + path + "'");
  std::map<std::string, std::string> facts;
  std::istringstream lines(outcome.Output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t split = line.find('=');
    // Facts of the format come last, and are used where the stream has none.
    if (split == std::string::npos) continue;
    const std::string value = line.substr(split + 1);
    if (value != "N/A") facts[line.substr(0, split)] = value;
  }
  return facts;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TempFolder::TempFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "codec-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) throw std::system_error(errno, std::generic_category(), pattern);
  folder_ = pattern;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

}  // namespace kestrune::test
