#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kestrune::test {

/// A file of sound, and what comes before it on ffmpeg's command line: the form of one without a header.
struct SoundFile {
  std::string Path;
  std::string Options = {};
};

/// What ffmpeg finds in a file.
struct DecodedFile {
  std::string Codec;
  std::int32_t SampleRate = 0;  ///< Hz
  int Channels = 0;
  std::map<std::string, std::string> Tags;  ///< by their names in small letters; the first 255 bytes of each
  std::vector<std::int16_t> Samples;        ///< interleaved, at that rate
};

/// All files as ffmpeg decodes them, in their order. A start of ffmpeg takes as long as twenty short songs, so many are given
/// to each. Whatever it complains of fails the test, with the file's name. Writes beside the files, and removes that again.
std::vector<DecodedFile> DecodeTogether(const std::vector<SoundFile>& files);

/// Checksums of the packets of sound in all files, in their order, without decoding; complaints fail the test as well.
std::vector<std::string> SoundChecksums(const std::vector<std::string>& paths);

}  // namespace kestrune::test
