#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "base/Result.h"

namespace kestrune::recorder {

/// The one way in for whatever comes from outside: a button, the tray, a key, the control socket, a signal, the
/// end of the session, the answer to a message box. A wish waits here until the run is between two steps.
///
/// 1. Wishes are carried out one at a time, in the order in which they were asked, from the event loop and never
///    within Ask.
/// 2. None is carried out inside another handler of the run: not in a wait or a pump, so not within a tick, the
///    start, the receive path or another wish, and not while somebody holds the door.
/// 3. Each wish is answered exactly once, right after it was carried out; or, once the door is shut for good,
///    with the reason for that.
///
/// The run's own steps, such as the schedule pass, are not wishes: they go on directly. One thread.
class Door {
 public:
  /// Carries the wish out; a failure is its refusal.
  using Wish = std::function<base::Result()>;
  using Answered = std::function<void(const base::Result&)>;

  /// The loop must outlive the door.
  explicit Door(base::EventLoop& loop);
  Door(const Door&) = delete;
  Door& operator=(const Door&) = delete;

  /// Asks for something. `answered` may be called before this returns if the door is shut for good, and is not
  /// called once the door has been destroyed.
  void Ask(Wish wish, Answered answered = {});

  /// True while a wish is carried out, also in what its waits let in.
  [[nodiscard]] bool Serving() const { return serving_; }

  /// Answers all wishes that wait, and all that follow, with the reason, which must not be empty.
  void ShutForGood(const std::string& reason);

  /// Keeps wishes waiting for as long as it lives; for a step that runs a loop of its own in place of a pump.
  class Hold {
   public:
    explicit Hold(Door& door);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    Door& door_;
  };

 private:
  struct Waiting {
    Wish What;
    Answered Tell;
  };

  void Serve();
  void Look();

  const base::EventLoop& loop_;
  std::deque<Waiting> waiting_;
  std::string shut_;  // why, once it is shut for good
  bool serving_ = false;
  int holds_ = 0;
  std::unique_ptr<base::Timer> tmrServe_;  // enabled while a wish waits and nobody holds the door
};

}  // namespace kestrune::recorder
