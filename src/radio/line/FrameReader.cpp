#include "radio/line/FrameReader.h"

namespace kestrune::radio {

namespace {

constexpr std::string_view kHeader = "\x5A\xA5";
// Below this it is not worth the while to move the rest of the buffer to its front.
constexpr std::size_t kCompactFrom = 4096;

unsigned ByteOf(std::string_view bytes, std::size_t position) {
  return static_cast<unsigned char>(bytes[position]);
}

}  // namespace

void FrameReader::Append(std::string_view bytes) {
  pcrRxBuffer_.append(bytes);
}

void FrameReader::DropPending() {
  junkBytes_ += Pending().size();
  Consume(Pending().size());
}

FrameStep FrameReader::Next(std::string& frame) {
  if (!HasCandidate()) return FrameStep::Nothing;
  Resynchronise();

  const std::string_view pending = Pending();
  const bool hasHeader = pending.starts_with(kHeader);
  // After resynchronising, the buffer can be too short to hold a length; it is incomplete then in any case.
  if (hasHeader && pending.size() >= 4) {
    const unsigned highByte = ByteOf(pending, 2);
    if (highByte < 0x80) localLength_ = highByte * 256 + ByteOf(pending, 3);
  }
  const std::size_t size = localLength_ + kOverhead;
  if (pending.size() < size) return FrameStep::Incomplete;

  frame.assign(pending.substr(0, size));
  if (!hasHeader) junkBytes_ += size;
  Consume(size);
  return FrameStep::Frame;
}

void FrameReader::Resynchronise() {
  const std::size_t position = Pending().substr(0, kOverhead).find(kHeader);
  if (position == std::string_view::npos || position == 0) return;
  junkBytes_ += position;
  Consume(position);
}

void FrameReader::Consume(std::size_t count) {
  consumed_ += count;
  if (consumed_ < kCompactFrom || consumed_ < pcrRxBuffer_.size() / 2) return;
  pcrRxBuffer_.erase(0, consumed_);
  consumed_ = 0;
}

}  // namespace kestrune::radio
