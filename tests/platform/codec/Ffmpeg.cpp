#include "platform/codec/Ffmpeg.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <span>
#include <sstream>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "base/Text.h"
#include "platform/codec/Decoders.h"

namespace kestrune::test {
namespace {

/// Far below the limits of a command line and of open files.
constexpr std::size_t kMostAtOnce = 120;

/// Where ffmpeg writes what it made of a file.
std::string MadeOf(const SoundFile& file) {
  return file.Path + ".made";
}

/// All files with one start, each made into a file as the output options say.
Outcome Start(std::span<const SoundFile> files, const std::string& outputOptions) {
  std::string inputs;
  std::string outputs;
  for (std::size_t i = 0; i < files.size(); ++i) {
    inputs += fmt::format(" -threads 1 {} -i '{}'", files[i].Options, files[i].Path);
    outputs += fmt::format(" -map {}:a {} '{}'", i, outputOptions, MadeOf(files[i]));
  }
  return RunProgramAll("ffmpeg -nostdin -y -hide_banner -nostats -v level+info" + inputs + outputs);
}

std::string Complaints(const Outcome& outcome) {
  std::string complaints;
  std::istringstream lines(outcome.Output);
  for (std::string line; std::getline(lines, line);) {
    if (line.find("[error]") != std::string::npos || line.find("[fatal]") != std::string::npos)
      complaints += line + '\n';
  }
  if (outcome.Status != 0) complaints += fmt::format("status {}\n", outcome.Status);
  return complaints;
}

/// " pcm_u8 ([1][0][0][0] / 0x0001), 8000 Hz, mono, u8, 64 kb/s".
void ReadForm(const std::string& text, DecodedFile& decoded) {
  std::istringstream(text.substr(0, text.find(','))) >> decoded.Codec;
  std::string hertz;
  std::string layout;  // "mono,", "stereo,", "3 channels,"
  std::istringstream(text.substr(text.find(',') + 1)) >> decoded.SampleRate >> hertz >> layout;
  decoded.Channels = layout == "mono," ? 1 : layout == "stereo," ? 2 : 0;
}

/// "    ARTIST          : Somebody", of the file or of its stream.
void ReadTag(const std::string& line, DecodedFile& decoded) {
  const std::size_t split = line.find(" : ");
  if (split == std::string::npos) return;
  decoded.Tags[base::ToLower(base::Trim(line.substr(0, split)))] = line.substr(split + 3);
}

/// What ffmpeg says about its inputs, before it says what it will make of them.
void ReadFacts(const std::string& output, std::span<DecodedFile> decoded) {
  const std::string mark = "[info]";
  const std::string input = " Input #";
  const std::string sound = ": Audio:";
  std::istringstream lines(output);
  DecodedFile* file = nullptr;
  for (std::string line; std::getline(lines, line) && line != mark + " Stream mapping:";) {
    if (!line.starts_with(mark)) continue;
    line.erase(0, mark.size());
    if (line.starts_with(input)) {
      file = &decoded[std::stoul(line.substr(input.size()))];
    } else if (file != nullptr) {
      const std::size_t at = line.find(sound);
      if (at == std::string::npos) {
        ReadTag(line, *file);
      } else {
        ReadForm(line.substr(at + sound.size()), *file);
      }
    }
  }
}

std::string TakeMade(const SoundFile& file) {
  const std::string path = MadeOf(file);
  std::string bytes = ReadFile(path);
  std::filesystem::remove(path);
  return bytes;
}

std::vector<std::int16_t> Samples(const std::string& bytes) {
  std::vector<std::int16_t> samples(bytes.size() / sizeof(std::int16_t));
  if (!samples.empty()) std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(std::int16_t));
  return samples;
}

/// What one start printed. If it complained, each file is tried alone, to tell which one it is.
std::string Make(std::span<const SoundFile> files, const std::string& outputOptions) {
  const Outcome outcome = Start(files, outputOptions);
  const std::string complaints = Complaints(outcome);
  if (complaints.empty()) return outcome.Output;
  ADD_FAILURE() << complaints;
  for (const SoundFile& file : files) {
    const std::string own = Complaints(Start(std::span(&file, 1), outputOptions));
    if (!own.empty()) ADD_FAILURE() << file.Path << '\n' << own;
  }
  return outcome.Output;
}

}  // namespace

std::vector<DecodedFile> DecodeTogether(const std::vector<SoundFile>& files) {
  std::vector<DecodedFile> decoded(files.size());
  for (std::size_t first = 0; first < files.size(); first += kMostAtOnce) {
    const std::size_t count = std::min(kMostAtOnce, files.size() - first);
    const auto some = std::span(files).subspan(first, count);
    ReadFacts(Make(some, "-f s16le"), std::span(decoded).subspan(first, count));
    for (std::size_t i = 0; i < count; ++i) decoded[first + i].Samples = Samples(TakeMade(some[i]));
  }
  return decoded;
}

std::vector<std::string> SoundChecksums(const std::vector<std::string>& paths) {
  std::vector<SoundFile> files;
  for (const std::string& path : paths) files.push_back({path});
  std::vector<std::string> checksums;
  for (std::size_t first = 0; first < files.size(); first += kMostAtOnce) {
    const auto some = std::span(files).subspan(first, std::min(kMostAtOnce, files.size() - first));
    Make(some, "-c copy -f md5");
    for (const SoundFile& file : some) checksums.push_back(TakeMade(file));
  }
  return checksums;
}

}  // namespace kestrune::test
