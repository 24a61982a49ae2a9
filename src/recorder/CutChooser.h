#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "cut/Cut.h"
#include "cut/Listener.h"
#include "platform/PcmFormat.h"
#include "recorder/StationLags.h"

namespace kestrune::recorder {

/// Listens to the sound as it comes from the input, notes when the tuned channel's text changes, and chooses where such
/// a change cuts the sound. For the main thread; frames are counted as the capture counts them.
class CutChooser {
 public:
  /// Must outlive the object.
  explicit CutChooser(StationLags& lags) : lags_(lags) {}

  /// A block has come, which begins with frame `first`. What does not follow the last block begins anew.
  void Hear(std::span<const std::int16_t> block, std::int64_t first, const platform::PcmFormat& format);
  /// Nothing is heard any more.
  void Forget() { listener_.reset(); }
  [[nodiscard]] bool Hears() const { return listener_.has_value(); }

  /// The tuned channel's text has come while frame `now` was captured.
  void TextCame(const std::string& artist, const std::string& song, std::int64_t now);
  /// The frame that was captured when this text first came; `now` if it was not seen to come.
  [[nodiscard]] std::int64_t StampOf(const std::string& artist, const std::string& song,
                                     std::int64_t now) const;

  /// Chooses the cut for a change of text on a channel, stamped with that frame, in what was heard so far, and learns
  /// the station's lag from it. Takes some milliseconds.
  [[nodiscard]] cut::Cut Choose(std::int64_t stamp, std::int16_t channel);

 private:
  StationLags& lags_;
  std::optional<cut::Listener> listener_;
  platform::PcmFormat format_;

  std::string artist_;
  std::string song_;
  std::int64_t stamp_ = 0;
  bool textKnown_ = false;
};

}  // namespace kestrune::recorder
