#include "recorder/CutChooser.h"

namespace kestrune::recorder {
namespace {

// Less is no sound to tell songs by.
constexpr std::int32_t kLowestRate = 8000;

}  // namespace

void CutChooser::Hear(std::span<const std::int16_t> block, std::int64_t first,
                      const platform::PcmFormat& format) {
  if (format.SampleRate < kLowestRate) return Forget();
  if (!listener_ || format_ != format || listener_->End() != first) {
    listener_.emplace(format.SampleRate, format.Channels, first);
    format_ = format;
  }
  listener_->Hear(block);
}

void CutChooser::TextCame(const std::string& artist, const std::string& song, std::int64_t now) {
  if (textKnown_ && artist == artist_ && song == song_) return;
  textKnown_ = true;
  artist_ = artist;
  song_ = song;
  stamp_ = now;
}

std::int64_t CutChooser::StampOf(const std::string& artist, const std::string& song, std::int64_t now) const {
  return textKnown_ && artist == artist_ && song == song_ ? stamp_ : now;
}

cut::Cut CutChooser::Choose(std::int64_t stamp, std::int16_t channel) {
  cut::Cut cut;
  cut.Frame = stamp;
  if (!listener_) return cut;
  cut = listener_->Choose(stamp, lags_.Of(channel));
  lags_.Keep(channel);
  return cut;
}

}  // namespace kestrune::recorder
