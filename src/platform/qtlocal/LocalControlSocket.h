#pragma once

#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/FileDescriptor.h"

class QSocketNotifier;

namespace kestrune::platform {

/// Serves lines on a socket of the file system from Qt's event loop: each line that a client sends is handed to
/// `answer` without its end, and what that replies, now or later, goes back as one line.
///
/// 1. A socket that a dead process left is replaced; one that still listens is not. If two processes start at the
///    same moment, the unit's lock decides: only its holder makes this object.
/// 2. The path lies in the runtime folder, which must exist. A process of another user is disconnected unheard.
/// 3. A client's lines are answered in their order: the next one is handed to `answer` once the reply to the one
///    before has come. Other clients are served meanwhile, also inside an `answer` that lets events run.
/// 4. No client costs more than about 64 KiB of what it sent, and 1 MiB and one reply of what it has not fetched yet:
///    one that does not fetch is not read further; one that sends more than 64 KiB without a line end has that
///    handed to `answer` as it is and is then cut.
/// 5. A reply may come at any time, and comes to nothing once the client or this object has gone.
///
/// Made, used and destroyed on the thread of the event loop, and not destroyed from within `answer`.
class LocalControlSocket {
 public:
  /// Takes one line without its end. Only the first call counts.
  using Reply = std::function<void(std::string line)>;
  using Answer = std::function<void(std::string_view line, const Reply& reply)>;

  enum class State { Listening, AnotherListens, Failed };

  LocalControlSocket(std::string path, Answer answer);
  LocalControlSocket(const LocalControlSocket&) = delete;
  LocalControlSocket& operator=(const LocalControlSocket&) = delete;
  ~LocalControlSocket();

  [[nodiscard]] State Status() const { return state_; }
  /// Why it does not listen, as one line.
  [[nodiscard]] const std::string& Reason() const { return reason_; }

 private:
  struct Client;

  [[nodiscard]] State Open();
  void Accept();
  void Read(Client& client);
  void Work(Client& client);
  void AnswerLines(Client& client);
  void TakeReply(std::uint64_t id, std::uint64_t line, const std::string& reply);
  void Settle(Client& client);
  void Drop(Client& client);

  std::string path_;
  Answer answer_;
  FileDescriptor listener_;
  QSocketNotifier* listening_ = nullptr;
  std::map<std::uint64_t, std::unique_ptr<Client>> clients_;  // by a number that is never used again
  std::uint64_t lastClient_ = 0;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
  State state_ = State::Failed;
  std::string reason_;
  QTimer resume_;  ///< lets clients in again after the process ran out of files
  QObject owner_;  ///< of all notifiers, which go before the sockets that they watch
};

}  // namespace kestrune::platform
