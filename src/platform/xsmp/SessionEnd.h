#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QSocketNotifier;

namespace kestrune::platform {

/// Reports the end of the desktop's session, and keeps the session waiting until this object is destroyed. The next session
/// starts the program again, as those that restore programs do.
///
/// It is a client of the session manager (SESSION_MANAGER in the environment). Qt's own has to stand back for it, by
/// HiddenSessionManager: it cannot tell the end of a session from a session that is only saved, wants all work done
/// within one call, dies with the session manager, and is there on X11 alone.
///
/// Nothing happens without a session manager, or after it has gone. All on the thread of the Qt loop.
class SessionEnd {
 public:
  /// The handler is called from the loop, once at most, and must leave this object alone. `command` starts the
  /// program again: its path, then its arguments.
  SessionEnd(const std::vector<std::string>& command, std::function<void()> handler);
  ~SessionEnd();
  SessionEnd(const SessionEnd&) = delete;
  SessionEnd& operator=(const SessionEnd&) = delete;

  /// Whether a session manager knows of this program.
  [[nodiscard]] bool Connected() const { return connection_ != nullptr; }

 private:
  struct Connection;  // keeps the macros of the protocol's headers out of this one

  void Open();
  void Introduce(const std::vector<std::string>& command);
  void Read();
  void Ending();
  void Disconnect();

  std::function<void()> handler_;
  bool told_ = false;
  bool kept_ = false;  ///< the session manager waits for an answer
  bool over_ = false;  ///< the session manager has gone, or lets go of its clients
  std::unique_ptr<Connection> connection_;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace kestrune::platform
