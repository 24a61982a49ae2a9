#include "platform/codec/FlacMender.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <FLAC/stream_decoder.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/FlacHeader.h"

namespace kestrune::platform {
namespace {

/// Reads the blocks of sound of a file, up to the first that is not whole or does not follow the one before. How long a
/// block is shows only when it is decoded.
class FlacSound {
 public:
  FlacSound(const DiskFile& file, const FlacFacts& facts) : file_(file), like_(facts) {
    // The blocks alone tell how long it is.
    like_.Frames = 0;
    start_ = FlacStart(like_);
  }

  /// False if the decoder cannot be had.
  [[nodiscard]] bool Read(const std::stop_token& stop) {
    const std::unique_ptr<FLAC__StreamDecoder, decltype(&FLAC__stream_decoder_delete)> decoder(
        FLAC__stream_decoder_new(), &FLAC__stream_decoder_delete);
    if (decoder == nullptr ||
        FLAC__stream_decoder_init_stream(decoder.get(), GiveBytes, nullptr, TellPlace, nullptr, nullptr,
                                         TakeBlock, nullptr, NoteDamage,
                                         this) != FLAC__STREAM_DECODER_INIT_STATUS_OK ||
        FLAC__stream_decoder_process_until_end_of_metadata(decoder.get()) == 0) {
      return false;
    }
    while (!stop.stop_requested() && Step(decoder.get())) {
    }
    return true;
  }

  /// Sample frames.
  [[nodiscard]] std::int64_t Frames() const { return frames_; }
  /// Where the last whole block ends.
  [[nodiscard]] std::int64_t End() const { return end_; }
  [[nodiscard]] std::uint32_t SmallestBlock() const { return smallest_; }
  [[nodiscard]] std::uint32_t LargestBlock() const { return largest_; }
  /// Whether a block begins where the last whole one ends, and there are too few bytes for it.
  [[nodiscard]] bool EndsInABlock() const {
    constexpr std::string_view kStart = "\xFF\xF8";
    constexpr std::int64_t kMostOverhead = 64;
    const std::int64_t left = file_.Size() - end_;
    const auto start =
        file_.ReadAt(end_, static_cast<std::size_t>(std::min<std::int64_t>(left, kStart.size())));
    const std::int64_t mostBytes = std::int64_t{like_.BlockFrames} * like_.Channels * 2 + kMostOverhead;
    return start && kStart.starts_with(*start) && left < mostBytes;
  }

 private:
  [[nodiscard]] bool Step(FLAC__StreamDecoder* decoder) {
    const std::int64_t before = frames_;
    FLAC__uint64 place = 0;
    if (FLAC__stream_decoder_process_single(decoder) == 0 || damaged_ || frames_ == before ||
        FLAC__stream_decoder_get_decode_position(decoder, &place) == 0) {
      frames_ = before;
      return false;
    }
    const auto block = static_cast<std::uint32_t>(static_cast<std::int64_t>(place) - end_);
    smallest_ = before == 0 ? block : std::min(smallest_, block);
    largest_ = std::max(largest_, block);
    end_ = static_cast<std::int64_t>(place);
    return true;
  }

  static FLAC__StreamDecoderReadStatus GiveBytes(const FLAC__StreamDecoder* /*decoder*/, FLAC__byte* bytes,
                                                 std::size_t* size, void* self) {
    auto& own = *static_cast<FlacSound*>(self);
    const auto left = static_cast<std::size_t>(own.file_.Size() - own.at_);
    *size = std::min(*size, left);
    if (*size == 0) return FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
    auto read = own.file_.ReadAt(own.at_, *size);
    if (!read) return FLAC__STREAM_DECODER_READ_STATUS_ABORT;
    if (own.at_ == 0) read->replace(0, kFlacTagsAt, own.start_, 0, read->size());
    std::copy(read->begin(), read->end(), bytes);
    own.at_ += static_cast<std::int64_t>(*size);
    return FLAC__STREAM_DECODER_READ_STATUS_CONTINUE;
  }

  static FLAC__StreamDecoderTellStatus TellPlace(const FLAC__StreamDecoder* /*decoder*/, FLAC__uint64* place,
                                                 void* self) {
    *place = static_cast<FLAC__uint64>(static_cast<FlacSound*>(self)->at_);
    return FLAC__STREAM_DECODER_TELL_STATUS_OK;
  }

  static FLAC__StreamDecoderWriteStatus TakeBlock(const FLAC__StreamDecoder* /*decoder*/,
                                                  const FLAC__Frame* block,
                                                  const FLAC__int32* const* /*samples*/, void* self) {
    auto& own = *static_cast<FlacSound*>(self);
    const FLAC__FrameHeader& header = block->header;
    // A block of another capture may stand where the disk has kept old bytes.
    own.damaged_ = own.damaged_ || header.sample_rate != static_cast<std::uint32_t>(own.like_.SampleRate) ||
                   header.channels != static_cast<std::uint32_t>(own.like_.Channels) ||
                   header.number.sample_number != static_cast<FLAC__uint64>(own.frames_) ||
                   header.blocksize > own.like_.BlockFrames;
    if (own.damaged_) return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
    own.frames_ += header.blocksize;
    return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
  }

  static void NoteDamage(const FLAC__StreamDecoder* /*decoder*/, FLAC__StreamDecoderErrorStatus /*status*/,
                         void* self) {
    static_cast<FlacSound*>(self)->damaged_ = true;
  }

  const DiskFile& file_;
  FlacFacts like_;
  std::string start_;
  std::int64_t at_ = 0;
  std::int64_t end_ = static_cast<std::int64_t>(kFlacSoundAt);
  std::int64_t frames_ = 0;
  std::uint32_t smallest_ = 0;
  std::uint32_t largest_ = 0;
  bool damaged_ = false;
};

}  // namespace

MendedCapture MendFlac(DiskFile& file, const std::stop_token& stop) {
  if (EndsInFlacHead(file)) return NoSound();
  const auto head = ReadFlacHead(file);
  if (!head) return NoCapture();
  FlacSound sound(file, head->Facts);
  if (!sound.Read(stop)) return NoCapture();
  if (stop.stop_requested()) return NotMended("it was broken off");
  if (sound.Frames() == 0) return sound.EndsInABlock() ? NoSound() : NoCapture();
  if (file.Size() - sound.End() > kMostCutOff) return NotMended("it is damaged long before its end");

  FlacFacts facts = head->Facts;
  if (facts.Frames != sound.Frames()) {
    facts.Frames = sound.Frames();
    facts.SmallestBlock = sound.SmallestBlock();
    facts.LargestBlock = sound.LargestBlock();
    facts.Md5 = {};
  }
  if (file.Size() != sound.End() && !file.Truncate(sound.End())) return NotWritten(file);
  if (facts != head->Facts && !file.WriteAt(0, AsBytes(FlacStart(facts)))) return NotWritten(file);
  const std::int64_t rate = facts.SampleRate;
  return Mended(sound.Frames() / rate * 1000 + sound.Frames() % rate * 1000 / rate, head->Tags);
}

}  // namespace kestrune::platform
