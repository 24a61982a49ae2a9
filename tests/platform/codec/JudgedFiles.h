#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/PcmFormat.h"
#include "platform/codec/Ffmpeg.h"

namespace kestrune::test {

/// The files of a grid: each is written with its row, and all are decoded together once the last is there.
class JudgedFiles {
 public:
  using Judge = std::function<void(const DecodedFile&)>;

  /// The file must stay as it is until all are judged. `judge` says what ffmpeg has to find in it.
  void Add(const std::string& row, const SoundFile& file, Judge judge);
  /// Decodes and judges all that were added, and forgets them.
  void JudgeAll();

 private:
  struct Row {
    std::string Name;
    Judge Judges;
  };
  std::vector<Row> rows_;
  std::vector<SoundFile> files_;
};

void ExpectFacts(const DecodedFile& file, const std::string& codec, const platform::PcmFormat& format);

}  // namespace kestrune::test
