#include "platform/pulse/PulseServerSource.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include <pulse/pulseaudio.h>

namespace kestrune::platform {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kAnswerLimit{1};
constexpr std::chrono::seconds kRetryInterval{1};

PulseSourceState StateOf(const pa_source_info& info) {
  PulseSourceState state;
  state.Description = info.description != nullptr ? info.description : info.name;
  for (std::uint32_t i = 0; i < info.n_ports; ++i) {
    const pa_source_port_info& port = *info.ports[i];
    state.Ports.push_back({port.name, port.description != nullptr ? port.description : port.name});
  }
  if (info.active_port != nullptr) state.ActivePort = info.active_port->name;
  state.Volume = info.volume;
  state.Channels = info.channel_map;
  state.Muted = info.mute != 0;
  return state;
}

}  // namespace

class PulseServerSource::Connection {
 public:
  explicit Connection(std::string server) : server_(std::move(server)) {}
  ~Connection() { Close(); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Open(const std::string& source) {
    Close();
    source_ = source.empty() ? "@DEFAULT_SOURCE@" : source;
    loop_ = pa_mainloop_new();
    StartContext();
    WaitUntil([this] { return Gone() || known_; });
    changed_ = false;
  }

  void Close() {
    DropContext();
    if (loop_ != nullptr) pa_mainloop_free(std::exchange(loop_, nullptr));
    state_.reset();
  }

  bool Update() {
    if (loop_ == nullptr) return false;
    while (pa_mainloop_iterate(loop_, 0, nullptr) > 0) {
    }
    if (Gone() && steady_clock::now() >= retryAt_) StartContext();
    return std::exchange(changed_, false);
  }

  [[nodiscard]] const std::optional<PulseSourceState>& State() const { return state_; }

  /// Asks the server to change something, and then for the state that results.
  template <typename Ask>
  void Set(const Ask& ask) {
    if (!Ready()) return;
    pa_operation* operation = ask(context_, source_.c_str());
    if (operation == nullptr) return;
    WaitUntil([&] { return Gone() || pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    pa_operation_unref(operation);
    Query();
    WaitUntil([this] { return Gone() || !querying_; });
  }

 private:
  [[nodiscard]] bool Ready() const {
    return context_ != nullptr && pa_context_get_state(context_) == PA_CONTEXT_READY;
  }
  [[nodiscard]] bool Gone() const {
    return context_ == nullptr || !PA_CONTEXT_IS_GOOD(pa_context_get_state(context_));
  }

  template <typename Condition>
  void WaitUntil(const Condition& condition) {
    const auto end = steady_clock::now() + kAnswerLimit;
    while (loop_ != nullptr && !condition()) {
      const auto left =
          std::chrono::duration_cast<std::chrono::microseconds>(end - steady_clock::now()).count();
      if (left <= 0) return;
      if (pa_mainloop_prepare(loop_, static_cast<int>(left)) < 0 || pa_mainloop_poll(loop_) < 0 ||
          pa_mainloop_dispatch(loop_) < 0) {
        return;
      }
    }
  }

  void StartContext() {
    DropContext();
    retryAt_ = steady_clock::now() + kRetryInterval;
    if (loop_ == nullptr) return;
    context_ = pa_context_new(pa_mainloop_get_api(loop_), "Kestrune");
    if (context_ == nullptr) return;
    pa_context_set_state_callback(
        context_, [](pa_context*, void* self) { static_cast<Connection*>(self)->OnContextState(); }, this);
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
          static_cast<Connection*>(self)->Query();
        },
        this);
    const char* address = server_.empty() ? nullptr : server_.c_str();
    // An immediate refusal leaves a failed context, as a late one does.
    pa_context_connect(context_, address, PA_CONTEXT_NOAUTOSPAWN, nullptr);
  }

  void DropContext() {
    known_ = false;
    querying_ = false;
    again_ = false;
    if (context_ == nullptr) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_set_subscribe_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(std::exchange(context_, nullptr));
  }

  void OnContextState() {
    if (Ready()) {
      // The default source is named by the server itself.
      constexpr auto kMask = PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER;
      pa_operation* operation =
          pa_context_subscribe(context_, static_cast<pa_subscription_mask_t>(kMask), nullptr, nullptr);
      if (operation != nullptr) pa_operation_unref(operation);
      Query();
    } else if (Gone()) {
      querying_ = false;
      Learn(std::nullopt);
    }
  }

  /// One question at a time: if something changes before the answer has come, the question is asked again after it.
  void Query() {
    if (querying_) {
      again_ = true;
      return;
    }
    pa_operation* operation = pa_context_get_source_info_by_name(
        context_, source_.c_str(),
        [](pa_context*, const pa_source_info* info, int last, void* self) {
          static_cast<Connection*>(self)->OnSource(last == 0 ? info : nullptr);
        },
        this);
    if (operation == nullptr) return;
    querying_ = true;
    pa_operation_unref(operation);
  }

  /// Called with the source, and then without one at the end of the list; only the latter if there is no such source.
  void OnSource(const pa_source_info* info) {
    if (info != nullptr) {
      heard_ = StateOf(*info);
      return;
    }
    querying_ = false;
    Learn(std::exchange(heard_, std::nullopt));
    if (std::exchange(again_, false)) Query();
  }

  void Learn(std::optional<PulseSourceState> state) {
    state_ = std::move(state);
    known_ = true;
    changed_ = true;
  }

  const std::string server_;
  std::string source_;
  pa_mainloop* loop_ = nullptr;
  pa_context* context_ = nullptr;
  steady_clock::time_point retryAt_;

  std::optional<PulseSourceState> state_;
  std::optional<PulseSourceState> heard_;
  bool known_ = false;
  bool changed_ = false;
  bool querying_ = false;
  bool again_ = false;
};

PulseServerSource::PulseServerSource(const std::string& server)
    : connection_(std::make_unique<Connection>(server)) {}

PulseServerSource::~PulseServerSource() = default;

void PulseServerSource::Open(const std::string& source) {
  connection_->Open(source);
}

void PulseServerSource::Close() {
  connection_->Close();
}

bool PulseServerSource::Update() {
  return connection_->Update();
}

const std::optional<PulseSourceState>& PulseServerSource::State() const {
  return connection_->State();
}

void PulseServerSource::SetPort(const std::string& name) {
  connection_->Set([&name](pa_context* context, const char* source) {
    return pa_context_set_source_port_by_name(context, source, name.c_str(), nullptr, nullptr);
  });
}

void PulseServerSource::SetVolume(const pa_cvolume& volume) {
  connection_->Set([&volume](pa_context* context, const char* source) {
    return pa_context_set_source_volume_by_name(context, source, &volume, nullptr, nullptr);
  });
}

void PulseServerSource::SetMute(bool muted) {
  connection_->Set([muted](pa_context* context, const char* source) {
    return pa_context_set_source_mute_by_name(context, source, muted ? 1 : 0, nullptr, nullptr);
  });
}

}  // namespace kestrune::platform
