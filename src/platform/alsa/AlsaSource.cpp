#include "platform/alsa/AlsaSource.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <thread>
#include <utility>

#include <alsa/asoundlib.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "base/Ignored.h"
#include "platform/ring/GapCounter.h"

namespace kestrune::platform {

namespace {

constexpr unsigned kPeriodMicroseconds = 50'000;
constexpr unsigned kBufferMicroseconds = 2'000'000;
constexpr int kRetryMilliseconds = 1000;

/// The caller gets the reason why a device cannot be opened as a code; ALSA's own lines on standard error would only
/// repeat it for each device that is tried.
void Silent(const char* /*file*/, int /*line*/, const char* /*function*/, int /*code*/,
            const char* /*format*/, ...) {}

struct PcmCloser {
  void operator()(snd_pcm_t* pcm) const { snd_pcm_close(pcm); }
};
using Pcm = std::unique_ptr<snd_pcm_t, PcmCloser>;

std::string Hint(const void* hint, const char* key) {
  char* value = snd_device_name_get_hint(hint, key);
  std::string text = value != nullptr ? value : "";
  std::free(value);
  return text;
}

Pcm OpenPcm(const std::string& name, int& error) {
  snd_pcm_t* pcm = nullptr;
  error = snd_pcm_open(&pcm, name.c_str(), SND_PCM_STREAM_CAPTURE, SND_PCM_NONBLOCK);
  return Pcm(error < 0 ? nullptr : pcm);
}

int SetUp(snd_pcm_t* pcm, const PcmFormat& format) {
  snd_pcm_hw_params_t* params = nullptr;
  snd_pcm_hw_params_alloca(&params);
  int error = snd_pcm_hw_params_any(pcm, params);
  if (error < 0) return error;
  unsigned buffer = kBufferMicroseconds;
  unsigned period = kPeriodMicroseconds;
  const auto rate = static_cast<unsigned>(format.SampleRate);
  const auto channels = static_cast<unsigned>(format.Channels);
  if ((error = snd_pcm_hw_params_set_rate_resample(pcm, params, 1)) < 0) return error;
  if ((error = snd_pcm_hw_params_set_access(pcm, params, SND_PCM_ACCESS_RW_INTERLEAVED)) < 0) return error;
  if ((error = snd_pcm_hw_params_set_format(pcm, params, SND_PCM_FORMAT_S16)) < 0) return error;
  if ((error = snd_pcm_hw_params_set_channels(pcm, params, channels)) < 0) return error;
  if ((error = snd_pcm_hw_params_set_rate(pcm, params, rate, 0)) < 0) return error;
  // The times are only hints: a device with a small buffer will do.
  base::Ignored(snd_pcm_hw_params_set_period_time_near(pcm, params, &period, nullptr));
  base::Ignored(snd_pcm_hw_params_set_buffer_time_near(pcm, params, &buffer, nullptr));
  if ((error = snd_pcm_hw_params(pcm, params)) < 0) return error;
  if ((error = snd_pcm_prepare(pcm)) < 0) return error;
  return snd_pcm_start(pcm);
}

/// The device in the asked format, running; through the plug if it does not have the format itself.
Pcm OpenRunning(const std::string& id, const PcmFormat& format, int& error) {
  for (const std::string& name : {id, "plug:'" + id + "'"}) {
    Pcm pcm = OpenPcm(name, error);
    if (pcm == nullptr) return pcm;
    error = SetUp(pcm.get(), format);
    if (error >= 0) return pcm;
  }
  return nullptr;
}

}  // namespace

/// The open device and the thread that reads it.
class AlsaSource::Reader {
 public:
  /// Without a device it looks for it each second.
  Reader(std::string id, const PcmFormat& format, SampleSink& sink, Pcm pcm, const GapCounter& gaps)
      : id_(std::move(id)),
        format_(format),
        sink_(sink),
        pcm_(std::move(pcm)),
        hasDevice_(pcm_ != nullptr),
        stop_(eventfd(0, EFD_CLOEXEC)),
        samples_(static_cast<std::size_t>(format.SampleRate) / 20 *
                 static_cast<std::size_t>(format.Channels)),
        gaps_(gaps),
        thread_([this] { Run(); }) {}

  ~Reader() {
    base::Ignored(eventfd_write(stop_, 1));
    thread_.join();
    close(stop_);
  }

  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  /// The device is open here. Any thread.
  [[nodiscard]] bool HasDevice() const { return hasDevice_; }

 private:
  void Run() {
    for (;;) {
      if (pcm_ == nullptr) {
        pollfd stop{stop_, POLLIN, 0};
        if (poll(&stop, 1, kRetryMilliseconds) > 0) return;
        int error = 0;
        pcm_ = OpenRunning(id_, format_, error);
        hasDevice_ = pcm_ != nullptr;
        continue;
      }
      if (!Wait()) return;
      if (!Read()) {
        gaps_.Interrupt();
        pcm_.reset();
        hasDevice_ = false;
      }
    }
  }

  /// False if it is time to end.
  bool Wait() {
    const int count = std::max(snd_pcm_poll_descriptors_count(pcm_.get()), 0);
    descriptors_.resize(static_cast<std::size_t>(count) + 1);
    base::Ignored(snd_pcm_poll_descriptors(pcm_.get(), descriptors_.data(), static_cast<unsigned>(count)));
    descriptors_.back() = {stop_, POLLIN, 0};
    base::Ignored(poll(descriptors_.data(), descriptors_.size(), kRetryMilliseconds));
    if ((descriptors_.back().revents & POLLIN) != 0) return false;
    // Some devices need this call to serve their descriptors. Its result is not needed: the read finds out.
    unsigned short events = 0;
    base::Ignored(snd_pcm_poll_descriptors_revents(pcm_.get(), descriptors_.data(),
                                                   static_cast<unsigned>(count), &events));
    return true;
  }

  /// One piece; if there is more, the wait for it ends at once. False if the device is gone.
  bool Read() {
    const auto channels = static_cast<std::size_t>(format_.Channels);
    const snd_pcm_sframes_t frames = snd_pcm_readi(pcm_.get(), samples_.data(), samples_.size() / channels);
    if (frames == -EAGAIN || frames == 0) return true;
    if (frames < 0) {
      gaps_.Interrupt();
      if (snd_pcm_recover(pcm_.get(), static_cast<int>(frames), 1) < 0) return false;
      return snd_pcm_start(pcm_.get()) >= 0;
    }
    const std::int64_t missing = gaps_.Arrived(frames, GapCounter::Now());
    if (missing > 0) sink_.OnLost(missing);
    sink_.OnSamples({samples_.data(), static_cast<std::size_t>(frames) * channels});
    return true;
  }

  const std::string id_;
  const PcmFormat format_;
  SampleSink& sink_;
  Pcm pcm_;
  std::atomic<bool> hasDevice_;
  const int stop_;
  std::vector<std::int16_t> samples_;
  std::vector<pollfd> descriptors_;
  GapCounter gaps_;
  std::thread thread_;  // last: it uses all of the above
};

AlsaSource::AlsaSource() {
  snd_lib_error_set_handler(&Silent);
}

AlsaSource::~AlsaSource() = default;

std::vector<SoundDevice> AlsaSource::Devices() {
  std::vector<SoundDevice> devices;
  void** hints = nullptr;
  if (snd_device_name_hint(-1, "pcm", &hints) < 0) return devices;
  for (void** hint = hints; *hint != nullptr; ++hint) {
    const std::string id = Hint(*hint, "NAME");
    if (id.empty() || id == "null" || Hint(*hint, "IOID") == "Output") continue;
    std::string name = Hint(*hint, "DESC");
    // Two lines, card and device, become one.
    for (std::size_t end = name.find('\n'); end != std::string::npos; end = name.find('\n')) {
      name.replace(end, 1, ", ");
    }
    devices.push_back({name.empty() ? id : name, id});
  }
  snd_device_name_free_hint(hints);
  std::sort(devices.begin(), devices.end(), [](const SoundDevice& one, const SoundDevice& other) {
    if ((one.Id == "default") != (other.Id == "default")) return one.Id == "default";
    return one.Id < other.Id;
  });
  return devices;
}

bool AlsaSource::Usable(const std::string& id) {
  if (reader_ != nullptr && id == openId_ && reader_->HasDevice()) return true;
  int error = 0;
  return OpenPcm(id, error) != nullptr;
}

std::string AlsaSource::Open(const std::string& id, const PcmFormat& format, SampleSink& sink) {
  Close();
  GapCounter gaps;
  gaps.Start(format.SampleRate, GapCounter::Now());
  int error = 0;
  Pcm pcm = OpenRunning(id, format, error);
  std::string reason = pcm == nullptr ? snd_strerror(error) : "";
  openId_ = id;
  reader_ = std::make_unique<Reader>(id, format, sink, std::move(pcm), gaps);
  return reason;
}

void AlsaSource::Close() {
  reader_.reset();
}

}  // namespace kestrune::platform
