#include "platform/pulse/PulseSource.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <tuple>
#include <utility>

#include <pulse/pulseaudio.h>

#include "platform/ring/GapCounter.h"

namespace kestrune::platform {

namespace {

constexpr pa_usec_t kAnswerLimit = 5 * PA_USEC_PER_SEC;
constexpr pa_usec_t kOpenLimit = PA_USEC_PER_SEC / 2;
constexpr pa_usec_t kRetryInterval = PA_USEC_PER_SEC;
constexpr std::int64_t kFragmentsPerSecond = 20;

struct FoundDevice {
  bool Monitor;
  SoundDevice Device;
};

}  // namespace

/// The context and the stream. Everything that touches them runs with the loop's lock held: the main thread's calls
/// take it, and the loop holds it around the callbacks.
class PulseSource::Connection {
 public:
  explicit Connection(std::string server) : server_(std::move(server)), loop_(pa_threaded_mainloop_new()) {
    if (loop_ == nullptr) return;
    pa_threaded_mainloop_set_name(loop_, "sound");
    running_ = pa_threaded_mainloop_start(loop_) >= 0;
  }

  ~Connection() {
    if (loop_ == nullptr) return;
    {
      const Lock lock(loop_);
      CloseStream();
      DropContext();
    }
    if (running_) pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
  }

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool Reachable() {
    if (!running_) return false;
    const Lock lock(loop_);
    return Connect();
  }

  std::vector<FoundDevice> List() {
    std::vector<FoundDevice> found;
    if (!running_) return found;
    const Lock lock(loop_);
    if (!Connect()) return found;
    Listing listing{loop_, &found};
    Finish(pa_context_get_source_info_list(context_, &Connection::OnSource, &listing));
    return found;
  }

  bool Exists(const std::string& id) {
    if (!running_) return false;
    const Lock lock(loop_);
    if (!Connect()) return false;
    std::vector<FoundDevice> found;
    Listing listing{loop_, &found};
    Finish(pa_context_get_source_info_by_name(context_, id.c_str(), &Connection::OnSource, &listing));
    return !found.empty();
  }

  std::string Open(const std::string& id, const PcmFormat& format, SampleSink& sink) {
    if (!running_) return "the sound server's client library does not start";
    const Lock lock(loop_);
    CloseStream();
    id_ = id;
    format_ = format;
    sink_ = &sink;
    gaps_.Start(format.SampleRate, GapCounter::Now());
    keepOpen_ = true;
    // From here on the callbacks open the stream, however long the server takes.
    if (ContextGone() && !StartContext()) LoseStream();
    if (ContextReady() && !ConnectStream()) LoseStream();
    WaitUntil([this] { return StreamReady() || retry_ != nullptr; }, kOpenLimit);
    return StreamReady() ? std::string() : Error();
  }

  void Close() {
    if (!running_) return;
    const Lock lock(loop_);
    CloseStream();
  }

 private:
  class Lock {
   public:
    explicit Lock(pa_threaded_mainloop* loop) : loop_(loop) { pa_threaded_mainloop_lock(loop_); }
    ~Lock() { pa_threaded_mainloop_unlock(loop_); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    pa_threaded_mainloop* loop_;
  };

  struct Listing {
    pa_threaded_mainloop* Loop;
    std::vector<FoundDevice>* Found;
  };

  [[nodiscard]] bool ContextReady() const {
    return context_ != nullptr && pa_context_get_state(context_) == PA_CONTEXT_READY;
  }
  [[nodiscard]] bool ContextGone() const {
    return context_ == nullptr || !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_));
  }
  [[nodiscard]] bool StreamReady() const {
    return stream_ != nullptr && pa_stream_get_state(stream_) == PA_STREAM_READY;
  }

  std::string Error() {
    const int code = context_ == nullptr ? PA_ERR_CONNECTIONREFUSED : pa_context_errno(context_);
    return pa_strerror(code == PA_OK ? PA_ERR_TIMEOUT : code);
  }

  /// Makes the main thread wait for the condition, up to the limit; the callbacks signal.
  template <typename Condition>
  bool WaitUntil(const Condition& condition, pa_usec_t limit = kAnswerLimit) {
    if (condition()) return true;
    bool late = false;
    std::pair<pa_threaded_mainloop*, bool*> alarm{loop_, &late};
    pa_time_event* event = pa_context_rttime_new(
        context_, pa_rtclock_now() + limit,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* data) {
          const auto& [loop, flag] = *static_cast<std::pair<pa_threaded_mainloop*, bool*>*>(data);
          *flag = true;
          pa_threaded_mainloop_signal(loop, 0);
        },
        &alarm);
    while (!condition() && !late) pa_threaded_mainloop_wait(loop_);
    FreeEvent(event);
    return condition();
  }

  void Finish(pa_operation* operation) {
    if (operation == nullptr) return;
    const bool done = WaitUntil([&] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    // Its callback must not run once the caller's list is gone.
    if (!done) pa_operation_cancel(operation);
    pa_operation_unref(operation);
  }

  void FreeEvent(pa_time_event* event) {
    if (event != nullptr) pa_threaded_mainloop_get_api(loop_)->time_free(event);
  }

  bool Connect() {
    if (ContextGone() && !StartContext()) return false;
    return WaitUntil([this] { return ContextReady() || ContextGone(); }) && ContextReady();
  }

  bool StartContext() {
    DropContext();
    context_ = pa_context_new(pa_threaded_mainloop_get_api(loop_), "Kestrune");
    if (context_ == nullptr) return false;
    pa_context_set_state_callback(
        context_, [](pa_context*, void* self) { static_cast<Connection*>(self)->OnContextState(); }, this);
    const char* address = server_.empty() ? nullptr : server_.c_str();
    return pa_context_connect(context_, address, PA_CONTEXT_NOFLAGS, nullptr) >= 0;
  }

  void DropContext() {
    DropStream();
    if (context_ == nullptr) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(context_);
    context_ = nullptr;
  }

  bool ConnectStream() {
    DropStream();
    const pa_sample_spec form{PA_SAMPLE_S16NE, static_cast<std::uint32_t>(format_.SampleRate),
                              static_cast<std::uint8_t>(format_.Channels)};
    stream_ = pa_stream_new(context_, "Recording", &form, nullptr);
    if (stream_ == nullptr) return false;
    pa_stream_set_state_callback(
        stream_, [](pa_stream*, void* self) { static_cast<Connection*>(self)->OnStreamState(); }, this);
    pa_stream_set_read_callback(
        stream_, [](pa_stream*, std::size_t, void* self) { static_cast<Connection*>(self)->OnReadable(); },
        this);
    pa_stream_set_suspended_callback(
        stream_, [](pa_stream*, void* self) { static_cast<Connection*>(self)->gaps_.Interrupt(); }, this);
    pa_buffer_attr buffer{};
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    buffer.fragsize = static_cast<std::uint32_t>(format_.SampleRate / kFragmentsPerSecond * format_.Channels *
                                                 sizeof(std::int16_t));
    // Without a wanted latency the device may deliver its sound in pieces of seconds.
    constexpr int kFlags = PA_STREAM_DONT_MOVE | PA_STREAM_ADJUST_LATENCY | PA_STREAM_START_UNMUTED;
    return pa_stream_connect_record(stream_, id_.c_str(), &buffer, static_cast<pa_stream_flags_t>(kFlags)) >=
           0;
  }

  void DropStream() {
    if (stream_ == nullptr) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_set_read_callback(stream_, nullptr, nullptr);
    pa_stream_set_suspended_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(stream_);
    stream_ = nullptr;
  }

  void CloseStream() {
    keepOpen_ = false;
    sink_ = nullptr;
    FreeEvent(std::exchange(retry_, nullptr));
    DropStream();
  }

  void OnContextState() {
    if (ContextGone()) LoseStream();
    if (ContextReady() && keepOpen_ && stream_ == nullptr && !ConnectStream()) LoseStream();
    pa_threaded_mainloop_signal(loop_, 0);
  }

  void OnStreamState() {
    if (stream_ != nullptr && !PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) LoseStream();
    pa_threaded_mainloop_signal(loop_, 0);
  }

  /// A stream that is lost is made again after a while, from a timer: a failed object must not be destroyed within its
  /// own callback.
  void LoseStream() {
    if (!keepOpen_) return;
    gaps_.Interrupt();
    if (retry_ != nullptr) return;
    retry_ = pa_context_rttime_new(
        context_, pa_rtclock_now() + kRetryInterval,
        [](pa_mainloop_api*, pa_time_event*, const timeval*, void* self) {
          static_cast<Connection*>(self)->Retry();
        },
        this);
  }

  void Retry() {
    FreeEvent(std::exchange(retry_, nullptr));
    // A call from the main thread may have been faster.
    if (stream_ != nullptr && PA_STREAM_IS_GOOD(pa_stream_get_state(stream_))) return;
    DropStream();
    if (ContextGone()) {
      // A refusal comes at once or through the state callback; both lead back here.
      if (!StartContext()) LoseStream();
    } else if (ContextReady() && !ConnectStream()) {
      LoseStream();
    }
  }

  void OnReadable() {
    for (;;) {
      const void* data = nullptr;
      std::size_t bytes = 0;
      if (pa_stream_peek(stream_, &data, &bytes) < 0 || bytes == 0) return;
      const std::size_t samples = bytes / sizeof(std::int16_t);
      if (sink_ != nullptr) Deliver(static_cast<const std::int16_t*>(data), samples);
      pa_stream_drop(stream_);
    }
  }

  void Deliver(const std::int16_t* data, std::size_t samples) {
    const auto frames = static_cast<std::int64_t>(samples) / format_.Channels;
    const std::int64_t missing = gaps_.Arrived(frames, GapCounter::Now());
    if (missing > 0) sink_->OnLost(missing);
    if (data != nullptr) {
      sink_->OnSamples({data, samples});
      return;
    }
    sink_->OnLost(frames);
    static constexpr std::array<std::int16_t, 1024> kSilence{};
    for (std::size_t left = samples; left > 0;) {
      const std::size_t count = std::min(left, kSilence.size());
      sink_->OnSamples(std::span(kSilence).first(count));
      left -= count;
    }
  }

  static void OnSource(pa_context* /*context*/, const pa_source_info* info, int last, void* data) {
    const auto& listing = *static_cast<Listing*>(data);
    if (last == 0 && info != nullptr) {
      const std::string name = info->description != nullptr ? info->description : info->name;
      listing.Found->push_back({info->monitor_of_sink != PA_INVALID_INDEX, {name, info->name}});
    }
    if (last != 0) pa_threaded_mainloop_signal(listing.Loop, 0);
  }

  const std::string server_;
  pa_threaded_mainloop* const loop_;
  bool running_ = false;

  pa_context* context_ = nullptr;
  pa_stream* stream_ = nullptr;
  pa_time_event* retry_ = nullptr;
  bool keepOpen_ = false;

  std::string id_;
  PcmFormat format_;
  SampleSink* sink_ = nullptr;
  GapCounter gaps_;
};

PulseSource::PulseSource(std::string server) : connection_(std::make_unique<Connection>(std::move(server))) {}

PulseSource::~PulseSource() = default;

bool PulseSource::Reachable() {
  return connection_->Reachable();
}

std::vector<SoundDevice> PulseSource::Devices() {
  std::vector<FoundDevice> found = connection_->List();
  std::sort(found.begin(), found.end(), [](const FoundDevice& one, const FoundDevice& other) {
    return std::tie(one.Monitor, one.Device.Name, one.Device.Id) <
           std::tie(other.Monitor, other.Device.Name, other.Device.Id);
  });
  std::vector<SoundDevice> devices;
  devices.reserve(found.size());
  for (FoundDevice& device : found) devices.push_back(std::move(device.Device));
  return devices;
}

bool PulseSource::Usable(const std::string& id) {
  return connection_->Exists(id);
}

std::string PulseSource::Open(const std::string& id, const PcmFormat& format, SampleSink& sink) {
  return connection_->Open(id, format, sink);
}

void PulseSource::Close() {
  connection_->Close();
}

}  // namespace kestrune::platform
