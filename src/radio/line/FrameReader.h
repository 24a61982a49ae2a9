#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune::radio {

/// What one call of `FrameReader::Next` came to.
enum class FrameStep {
  Nothing,     ///< too few bytes to examine
  Incomplete,  ///< the frame in front lacks bytes
  Frame,       ///< a frame was cut off
};

/// Cuts the radio's bytes into frames: 5A A5, a big-endian count of payload bytes, the payload, two bytes of
/// trailer. It survives junk and counts what it drops:
///
/// 1. The buffer is examined only while it holds more than 6 bytes.
/// 2. A header at position 2 to 5 of the buffer is moved to its front; the bytes before it are junk.
/// 3. The length comes from the frame. Without a header in front, or if the length has its top bit set, the
///    length of the previous frame is used again, and so junk is cut in pieces of that size. Such a piece is
///    returned as if it were a frame.
///
/// At every moment the bytes appended are those of the frames with a header, the junk and the bytes pending.
class FrameReader {
 public:
  /// Forgets the length that rule 3 falls back on; each run of the receive path begins with this.
  void BeginRun() { localLength_ = 0; }

  void Append(std::string_view bytes);

  /// Drops what is pending, as junk: the rest of a frame that never comes keeps back all frames after it.
  void DropPending();

  /// Cuts the next frame off into `frame`, which is left alone otherwise. Costs time in proportion to the
  /// bytes it cuts off, however much follows them.
  [[nodiscard]] FrameStep Next(std::string& frame);

  /// Whether there is enough for Next to look at.
  [[nodiscard]] bool HasCandidate() const { return Pending().size() > kOverhead; }
  /// Bytes received and not yet cut off; valid until the next call.
  [[nodiscard]] std::string_view Pending() const { return std::string_view(pcrRxBuffer_).substr(consumed_); }
  /// Bytes dropped so far because no header stood in front of them.
  [[nodiscard]] std::uint64_t JunkBytes() const { return junkBytes_; }

 private:
  static constexpr std::size_t kOverhead = 6;  // header, length and trailer

  void Resynchronise();
  void Consume(std::size_t count);

  std::string pcrRxBuffer_;
  std::size_t consumed_ = 0;  // bytes at the front of the buffer that are gone already
  std::size_t localLength_ = 0;
  std::uint64_t junkBytes_ = 0;
};

}  // namespace kestrune::radio
