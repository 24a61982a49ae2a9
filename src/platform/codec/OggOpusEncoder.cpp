#include "platform/codec/OggOpusEncoder.h"

#include <random>
#include <span>
#include <string_view>

#include <fmt/format.h>

#include "platform/codec/Bytes.h"
#include "platform/codec/CaptureErrors.h"
#include "platform/codec/OggComment.h"
#include "platform/codec/OpusTags.h"

namespace kestrune::platform {
namespace {

constexpr std::int32_t kLeastRate = 8000;
constexpr std::int32_t kMostRate = 48000;
constexpr int kFamilyOfMonoAndStereo = 0;
/// A page holds half a second, which is what a crash takes away at most.
constexpr int kPageSamples = 24000;
constexpr int kCommentPage = 1;

OpusEncCallbacks Callbacks(ope_write_func write) {
  return {.write = write, .close = [](void* /*self*/) { return 0; }};
}

}  // namespace

std::int16_t OggOpusEncoder::Prepare() {
  if (format_.Frequency < kLeastRate || format_.Frequency > kMostRate) return kRateRefused;
  if (format_.Channels != 1 && format_.Channels != 2) return kShapeRefused;
  if (format_.Bitrate < kLeastOpusBitrate || format_.Bitrate > kMostOpusBitrate) return kBitrateRefused;
  const OpusEncCallbacks callbacks = Callbacks(TakePage);
  // Ours take their place; the library wants some all the same.
  const std::unique_ptr<OggOpusComments, decltype(&ope_comments_destroy)> comments(ope_comments_create(),
                                                                                   &ope_comments_destroy);
  if (comments == nullptr) return kEncoderRefused;
  encoder_.reset(ope_encoder_create_callbacks(&callbacks, this, comments.get(), format_.Frequency,
                                              format_.Channels, kFamilyOfMonoAndStereo, nullptr));
  if (encoder_ == nullptr) return kEncoderRefused;
  OggOpusEnc* const encoder = encoder_.get();
  const auto serial = static_cast<opus_int32>(std::random_device{}());
  const int application = format_.Voice ? OPUS_APPLICATION_VOIP : OPUS_APPLICATION_AUDIO;
  const int signal = format_.Voice ? OPUS_SIGNAL_VOICE : OPUS_SIGNAL_MUSIC;
  const bool set = ope_encoder_ctl(encoder, OPUS_SET_APPLICATION(application)) == OPE_OK &&
                   ope_encoder_ctl(encoder, OPUS_SET_SIGNAL(signal)) == OPE_OK &&
                   ope_encoder_ctl(encoder, OPUS_SET_BITRATE(format_.Bitrate * 1000)) == OPE_OK &&
                   ope_encoder_ctl(encoder, OPE_SET_SERIALNO(serial)) == OPE_OK &&
                   // Nothing is held back beyond what a page takes.
                   ope_encoder_ctl(encoder, OPE_SET_DECISION_DELAY(0)) == OPE_OK &&
                   ope_encoder_ctl(encoder, OPE_SET_MUXING_DELAY(kPageSamples)) == OPE_OK;
  return set ? kCreated : kEncoderRefused;
}

bool OggOpusEncoder::Begin(DiskFile& file) {
  file_ = &file;
  // The library does not report that a header was not taken.
  return ope_encoder_flush_header(encoder_.get()) == OPE_OK && !failed_;
}

bool OggOpusEncoder::Write(std::span<const std::int16_t> samples) {
  const auto frames = static_cast<int>(samples.size() / static_cast<std::size_t>(format_.Channels));
  const bool taken = !failed_ && ope_encoder_write(encoder_.get(), samples.data(), frames) == OPE_OK;
  failed_ = failed_ || !taken;
  return !failed_;
}

int OggOpusEncoder::TakePage(void* self, const unsigned char* bytes, opus_int32 size) {
  auto& own = *static_cast<OggOpusEncoder*>(self);
  const std::string_view page(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
  own.failed_ = own.failed_ || !own.AppendPage(page);
  return own.failed_ ? 1 : 0;
}

bool OggOpusEncoder::AppendPage(std::string_view page) {
  if (pages_++ != kCommentPage) return file_->Append(AsBytes(page));
  return file_->Append(AsBytes(OggCommentPage(page, OpusTagsPacket(TagTexts({})))));
}

bool OggOpusEncoder::Finish() {
  // A page that did not fit is gone, and the stream cannot go on without it: what is on disk stays as it is.
  if (failed_) return false;
  // A stream that nothing was ever handed to ends the program when it is drained.
  constexpr opus_int16 kNothing = 0;
  return ope_encoder_write(encoder_.get(), &kNothing, 0) == OPE_OK &&
         ope_encoder_drain(encoder_.get()) == OPE_OK && !failed_;
}

std::string FormatDescription(const OpusFormat& format) {
  return fmt::format("Opus, {} kbit/s, {}, {} Hz, {}", format.Bitrate, format.Voice ? "voice" : "music",
                     format.Frequency, ChannelsText(format.Channels));
}

}  // namespace kestrune::platform
