#include "platform/codec/JudgedFiles.h"

#include <cstddef>
#include <utility>

#include <gtest/gtest.h>

namespace kestrune::test {

void JudgedFiles::Add(const std::string& row, const SoundFile& file, Judge judge) {
  rows_.push_back({.Name = row, .Judges = std::move(judge)});
  files_.push_back(file);
}

void JudgedFiles::JudgeAll() {
  const std::vector<DecodedFile> decoded = DecodeTogether(files_);
  for (std::size_t i = 0; i < decoded.size(); ++i) {
    SCOPED_TRACE(rows_[i].Name);
    rows_[i].Judges(decoded[i]);
  }
  rows_.clear();
  files_.clear();
}

void ExpectFacts(const DecodedFile& file, const std::string& codec, const platform::PcmFormat& format) {
  EXPECT_EQ(file.Codec, codec);
  EXPECT_EQ(file.SampleRate, format.SampleRate);
  EXPECT_EQ(file.Channels, format.Channels);
}

}  // namespace kestrune::test
