#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/codec/DiskFile.h"
#include "platform/codec/Mending.h"

namespace kestrune::platform {

struct TagTexts;

/// What the format chunk says.
struct RiffSound {
  std::uint16_t FormatTag = 1;
  std::uint16_t Channels = 1;
  std::uint32_t SampleRate = 0;
  std::uint32_t BytesPerSecond = 0;
  std::uint16_t BlockAlign = 1;
  std::uint16_t BitsPerSample = 16;

  bool operator==(const RiffSound&) const = default;
};

/// Writes a RIFF/WAVE file: an empty chunk that becomes the 64-bit sizes of RF64 if need be, the format, a
/// fact chunk for all but PCM, and the data. Until Finish the data reaches "to the end of the file", so that
/// a file that was never finished can still be played.
class RiffFile {
 public:
  explicit RiffFile(const RiffSound& sound) : sound_(sound) {}

  [[nodiscard]] bool Begin(DiskFile& file);
  [[nodiscard]] bool Append(std::span<const std::byte> sound) { return file_->Append(sound); }
  /// Puts the sizes right. `frames` is the length of the sound in sample frames.
  [[nodiscard]] bool Finish(std::int64_t frames);

  /// Takes up a file of this sound that was begun before, whose header is as long as the one of Begin.
  void Resume(DiskFile& file);
  /// The header, of a file that is not finished if the sizes are negative.
  [[nodiscard]] std::string Header(std::int64_t fileBytes, std::int64_t dataBytes, std::int64_t frames) const;

 private:
  RiffSound sound_;
  DiskFile* file_ = nullptr;
  std::int64_t dataStart_ = 0;
};

/// Writes the INFO list after the sound of a finished file, in place of one that is there. False, and the
/// file as it was, if it is no such file or takes no more.
[[nodiscard]] bool WriteRiffInfo(DiskFile& file, const TagTexts& texts);

/// A file of ours holds whole blocks of sound, and its sizes say how many.
[[nodiscard]] MendedCapture MendRiff(DiskFile& file, const std::stop_token& stop);

}  // namespace kestrune::platform
