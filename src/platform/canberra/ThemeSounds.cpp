#include "platform/canberra/ThemeSounds.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include <canberra.h>

namespace kestrune::platform {

/// What the two threads share. It outlives whichever ends first.
struct ThemeSounds::Post {
  explicit Post(std::function<void()> playInstead) : Instead(std::move(playInstead)) {}

  std::mutex Lock;
  std::condition_variable News;
  const char* Wanted = nullptr;  ///< the sound to be played; null: none
  bool Over = false;
  const std::function<void()> Instead;  ///< called under the lock, and not once it is over

  void Serve();
  void PlayInstead() {
    const std::scoped_lock lock(Lock);
    if (!Over) Instead();
  }
};

namespace {

struct Destroy {
  void operator()(ca_context* context) const { ca_context_destroy(context); }
};
using Context = std::unique_ptr<ca_context, Destroy>;

Context NewContext() {
  ca_context* context = nullptr;
  if (ca_context_create(&context) != CA_SUCCESS) return nullptr;
  ca_context_change_props(context, CA_PROP_APPLICATION_NAME, "Kestrune", CA_PROP_APPLICATION_ID, "kestrune",
                          CA_PROP_APPLICATION_ICON_NAME, "kestrune", nullptr);
  return Context(context);
}

}  // namespace

void ThemeSounds::Post::Serve() {
  Context context;
  for (;;) {
    const char* sound = nullptr;
    {
      std::unique_lock lock(Lock);
      News.wait(lock, [this] { return Over || Wanted != nullptr; });
      if (Over) return;
      sound = Wanted;
    }
    if (!context) context = NewContext();
    const int played = context == nullptr
                           ? CA_ERROR_NOTAVAILABLE
                           : ca_context_play(context.get(), 0, CA_PROP_EVENT_ID, sound, CA_PROP_MEDIA_ROLE,
                                             "event", CA_PROP_EVENT_DESCRIPTION, "Not possible now", nullptr);
    // Switched off by the user is silence.
    if (played != CA_SUCCESS && played != CA_ERROR_DISABLED) {
      context.reset();  // a server that has gone may come back
      PlayInstead();
    }
    const std::scoped_lock lock(Lock);
    Wanted = nullptr;
  }
}

ThemeSounds::ThemeSounds(std::function<void()> instead) : post_(std::make_shared<Post>(std::move(instead))) {}

ThemeSounds::~ThemeSounds() {
  const std::scoped_lock lock(post_->Lock);
  post_->Over = true;
  post_->News.notify_all();
}

void ThemeSounds::Play(std::string_view name) {
  const std::scoped_lock lock(post_->Lock);
  if (post_->Wanted != nullptr) return;
  post_->Wanted = ThemeSoundOf(name);
  post_->News.notify_all();
  if (std::exchange(started_, true)) return;
  // Detached, since nothing ends a wait for the server; it touches the post alone.
  std::thread([post = post_] { post->Serve(); }).detach();
}

const char* ThemeSoundOf(std::string_view name) {
  return name == "SystemAsterisk" ? "dialog-information" : "bell-window-system";
}

}  // namespace kestrune::platform
