#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "platform/PcmFormat.h"
#include "recorder/HeldSound.h"

namespace kestrune::recorder {

/// The sound between the input and the capture's file. While it is held back, it reaches the file ten seconds late, so
/// that the file may still end earlier than now. For the main thread; frames are counted from the program's start.
///
/// 1. The files, laid end to end, are the sound that came: nothing is left out and nothing comes twice, but for an
///    overlap that was asked for and for what Drop takes away.
/// 2. What has become due all at once is written little by little, with the blocks that come, so that an encoder
///    never holds the main thread up for long; Flush and Cut write all that is needed at once.
/// 3. What the file does not take stays, for the next one: half a minute more than what is held back anyway.
class HeldBack {
 public:
  /// Writes interleaved samples to the file in hand; false if it does not take them.
  using File = std::function<bool(std::span<const std::int16_t>)>;

  static constexpr int kSeconds = 10;
  static constexpr int kMostSeconds = kSeconds + 30;

  /// A file begins with the next frame that comes. What an earlier file left comes before that, if it has the same
  /// form.
  void Begin(const platform::PcmFormat& format);

  /// A block has come. Without `held` all that is there goes to the file at once; a block that finds nothing before it
  /// does not stay then.
  void Take(std::span<const std::int16_t> block, bool held, const File& file);
  /// Everything that is there goes to the file.
  void Flush(const File& file);
  /// Forgets what is not written.
  void Drop() { written_ = end_; }

  /// The file in hand ends at a frame that is still to be chosen; it is not written beyond `earliest` meanwhile.
  void AwaitCut(std::int64_t earliest);
  /// That frame is the first of the next file. Frames that are written already, or have not come yet, cannot be
  /// chosen: the nearest that can is taken. Half of the `overlap`, in frames, before and after it goes to both files.
  void SetCut(std::int64_t frame, std::int64_t overlap);
  [[nodiscard]] bool CutReached() const { return cut_ && written_ >= FileEnd(); }
  /// Writes the rest of the file and begins the next one. To be called after SetCut.
  void Cut(const File& file);

  /// Whether the file in hand is to end at a frame that was, or will be, chosen.
  [[nodiscard]] bool AwaitsCut() const { return limit_.has_value(); }
  /// The first frame of the file in hand, and the frame after the last that has come.
  [[nodiscard]] std::int64_t Start() const { return start_; }
  [[nodiscard]] std::int64_t End() const { return end_; }
  /// The first frame that is not written yet.
  [[nodiscard]] std::int64_t Written() const { return written_; }
  /// The chosen frame; nothing if there is none.
  [[nodiscard]] std::optional<std::int64_t> ChosenCut() const { return cut_; }

 private:
  void WriteUpTo(std::int64_t frame, const File& file);
  /// Forgets what no file has taken for too long.
  void LetGo();
  [[nodiscard]] std::int64_t Due(bool held) const;
  [[nodiscard]] std::int64_t FileEnd() const { return *cut_ + overlap_ / 2; }

  platform::PcmFormat format_;
  HeldSound sound_;
  std::int64_t start_ = 0;
  std::int64_t written_ = 0;
  std::int64_t end_ = 0;

  std::optional<std::int64_t> limit_;
  std::optional<std::int64_t> cut_;
  std::int64_t overlap_ = 0;
};

}  // namespace kestrune::recorder
