#include "apps/kestrune-radio/PulseOutput.h"

#include <utility>

namespace kestrune::radio_program {
namespace {

constexpr std::uint32_t kFrameBytes = 4;

/// Bytes of so many milliseconds.
std::uint32_t BytesOf(int milliseconds, int sampleRate) {
  return static_cast<std::uint32_t>(sampleRate) / 1000 * static_cast<std::uint32_t>(milliseconds) *
         kFrameBytes;
}

}  // namespace

void PulseOutput::Deleter::operator()(pa_context* context) const {
  pa_context_disconnect(context);
  pa_context_unref(context);
}

void PulseOutput::Deleter::operator()(pa_stream* stream) const {
  pa_stream_disconnect(stream);
  pa_stream_unref(stream);
}

PulseOutput::PulseOutput(std::string sink, int sampleRate) : sink_(std::move(sink)), sampleRate_(sampleRate) {
  Connect();
}

PulseOutput::~PulseOutput() {
  Disconnect();
}

void PulseOutput::Connect() {
  nextTry_ = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  loop_.reset(pa_mainloop_new());
  context_.reset(pa_context_new(pa_mainloop_get_api(loop_.get()), "kestrune-radio"));
  if (pa_context_connect(context_.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) context_.reset();
}

void PulseOutput::Disconnect() {
  stream_.reset();
  context_.reset();
  loop_.reset();
}

void PulseOutput::OpenStream() {
  pa_sample_spec format{PA_SAMPLE_S16LE, static_cast<std::uint32_t>(sampleRate_), 2};
  stream_.reset(pa_stream_new(context_.get(), "Virtual receiver", &format, nullptr));
  if (!stream_) return;
  pa_buffer_attr buffer{};
  buffer.maxlength = BytesOf(2000, sampleRate_);
  // The sound comes at the pace of real time, so the buffer never grows by itself. It starts full, and what
  // is in it evens out our own unevenness and the lumps in which the sink takes it.
  buffer.tlength = BytesOf(300, sampleRate_);
  buffer.prebuf = buffer.tlength;
  buffer.minreq = static_cast<std::uint32_t>(-1);
  buffer.fragsize = static_cast<std::uint32_t>(-1);
  pa_stream_set_underflow_callback(
      stream_.get(), [](pa_stream*, void* self) { ++static_cast<PulseOutput*>(self)->gaps_; }, this);
  pa_stream_set_overflow_callback(
      stream_.get(), [](pa_stream*, void* self) { static_cast<PulseOutput*>(self)->overflown_ = true; },
      this);
  const char* const sink = sink_.empty() ? nullptr : sink_.c_str();
  if (pa_stream_connect_playback(stream_.get(), sink, &buffer, PA_STREAM_ADJUST_LATENCY, nullptr, nullptr) <
      0) {
    stream_.reset();
  }
}

bool PulseOutput::Failed() const {
  if (!context_ || !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_.get()))) return true;
  return stream_ && !PA_STREAM_IS_GOOD(pa_stream_get_state(stream_.get()));
}

bool PulseOutput::Heard() const {
  return stream_ && pa_stream_get_state(stream_.get()) == PA_STREAM_READY;
}

void PulseOutput::Play(std::span<const std::int16_t> interleaved) {
  if (Failed()) {
    Disconnect();
    if (std::chrono::steady_clock::now() < nextTry_) return;
    Connect();
  }
  if (!loop_) return;
  while (pa_mainloop_iterate(loop_.get(), 0, nullptr) > 0) {
  }
  if (Failed()) return;
  if (!stream_ && pa_context_get_state(context_.get()) == PA_CONTEXT_READY) OpenStream();
  if (!Heard() || interleaved.empty()) return;
  const auto frames = static_cast<std::int64_t>(interleaved.size_bytes() / kFrameBytes);
  const bool written = pa_stream_write(stream_.get(), interleaved.data(), interleaved.size_bytes(), nullptr,
                                       0, PA_SEEK_RELATIVE) == 0;
  // An overflow is reported with the next round, and means about one call's worth of sound.
  if (!written || std::exchange(overflown_, false)) lostFrames_ += frames;
}

}  // namespace kestrune::radio_program
