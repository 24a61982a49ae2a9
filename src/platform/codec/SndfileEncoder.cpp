#include "platform/codec/SndfileEncoder.h"

#include <string_view>

#include <fmt/format.h>

#include "base/Ignored.h"
#include "platform/codec/CaptureErrors.h"

namespace kestrune::platform {
namespace {

int SamplesOf(std::int16_t compression) {
  switch (compression) {
    case 2:
      return SF_FORMAT_ALAW;
    case 3:
      return SF_FORMAT_ULAW;
    default:
      return SF_FORMAT_PCM_16;
  }
}

}  // namespace

SndfileEncoder::SndfileEncoder(const RawFormat& format) {
  info_.samplerate = format.Frequency;
  info_.channels = format.Channels;
  info_.format = SF_FORMAT_RAW | SF_ENDIAN_LITTLE | SamplesOf(format.Compression);
  shapeKnown_ = format.Bits == 16 && format.Compression >= 0 && format.Compression <= 3;
}

SndfileEncoder::SndfileEncoder(const VoxFormat& format) : evenBlocks_(true) {
  info_.samplerate = format.Frequency;
  info_.channels = 1;
  info_.format = SF_FORMAT_RAW | SF_FORMAT_VOX_ADPCM;
}

std::int16_t SndfileEncoder::Prepare() {
  if (info_.samplerate <= 0) return kRateRefused;
  if (!shapeKnown_ || (info_.channels != 1 && info_.channels != 2)) return kShapeRefused;
  return sf_format_check(&info_) != 0 ? kCreated : kEncoderRefused;
}

SF_VIRTUAL_IO SndfileEncoder::WriteOnly() {
  // A file without a header is never sought or read.
  SF_VIRTUAL_IO io{};
  io.get_filelen = [](void* sink) -> sf_count_t { return static_cast<Sink*>(sink)->File->Size(); };
  io.seek = [](sf_count_t, int, void* sink) -> sf_count_t { return static_cast<Sink*>(sink)->File->Size(); };
  io.tell = io.get_filelen;
  io.read = [](void*, sf_count_t, void*) -> sf_count_t { return 0; };
  io.write = [](const void* data, sf_count_t count, void* to) -> sf_count_t {
    auto* const sink = static_cast<Sink*>(to);
    const std::span bytes(static_cast<const std::byte*>(data), static_cast<std::size_t>(count));
    sink->Failed = sink->Failed || !sink->File->Append(bytes);
    return sink->Failed ? 0 : count;
  };
  return io;
}

bool SndfileEncoder::Begin(DiskFile& file) {
  sink_.File = &file;
  SF_VIRTUAL_IO io = WriteOnly();
  sound_.reset(sf_open_virtual(&io, SFM_WRITE, &info_, &sink_));
  return sound_ != nullptr;
}

bool SndfileEncoder::WriteWhole(std::span<const std::int16_t> samples) {
  const std::int64_t before = sink_.File->Size();
  const auto count = static_cast<sf_count_t>(samples.size());
  if (sf_write_short(sound_.get(), samples.data(), count) == count && !sink_.Failed) return true;
  sink_.Failed = true;
  base::Ignored(sink_.File->Truncate(before));
  return false;
}

bool SndfileEncoder::Write(std::span<const std::int16_t> samples) {
  if (!evenBlocks_) return WriteWhole(samples);
  waiting_.insert(waiting_.end(), samples.begin(), samples.end());
  const std::size_t odd = waiting_.size() % 2;
  const bool written = WriteWhole(std::span(waiting_).first(waiting_.size() - odd));
  waiting_.erase(waiting_.begin(), waiting_.end() - static_cast<int>(odd));
  return written;
}

bool SndfileEncoder::Finish() {
  if (!waiting_.empty() && !sink_.Failed) {
    waiting_.push_back(waiting_.front());
    base::Ignored(WriteWhole(waiting_));
  }
  return sf_close(sound_.release()) == 0 && !sink_.Failed;
}

MendedCapture MendRaw(DiskFile& file, const std::stop_token& /*stop*/) {
  constexpr std::int64_t kLargestFrame = 4;
  const std::int64_t whole = file.Size() - file.Size() % kLargestFrame;
  if (whole == 0) return NoSound();
  if (whole != file.Size() && !file.Truncate(whole)) return NotWritten(file);
  return Mended(MendedCapture::kUnknownLength);
}

MendedCapture MendVox(DiskFile& file, const std::stop_token& /*stop*/) {
  return file.Size() == 0 ? NoSound() : Mended(MendedCapture::kUnknownLength);
}

std::string FormatDescription(const RawFormat& format) {
  const std::string_view samples = format.Compression == 2   ? "8-bit A-law"
                                   : format.Compression == 3 ? "8-bit mu-law"
                                                             : "16-bit PCM";
  return fmt::format("RAW, {}, {} Hz, {}", samples, format.Frequency, ChannelsText(format.Channels));
}

std::string FormatDescription(const VoxFormat& format) {
  return fmt::format("VOX, 4-bit ADPCM, {} Hz, mono", format.Frequency);
}

}  // namespace kestrune::platform
