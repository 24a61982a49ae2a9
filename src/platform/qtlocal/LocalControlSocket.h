#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/FileDescriptor.h"

class QSocketNotifier;

namespace kestrune::platform {

/// Serves lines on a socket of the file system from Qt's event loop: each line that a client sends is handed
/// to `answer` without its end, and what that gives goes back as one line.
///
/// 1. A socket that a dead process left is replaced; one that still listens is not. Between two processes
/// that
///    start at the same moment the unit's lock decides: its holder alone makes this object.
/// 2. The path lies in the runtime folder, which must exist. A process of another user is shown out unheard.
/// 3. A client's lines are answered in their order, one after another. While `answer` lets events run, lines
/// of
///    other clients may be answered inside it.
/// 4. No client costs more than about 64 KiB of what it sent and 1 MiB and one answer of what it has not yet
///    fetched: one that does not fetch is not read further; one that sends more than 64 KiB without a line
///    end has that handed to `answer` as it is and is then cut.
///
/// Made, used and destroyed on the thread of the event loop, and not destroyed from within `answer`.
class LocalControlSocket {
 public:
  using Answer = std::function<std::string(std::string_view line)>;

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
  static void AnswerLines(Client& client, const Answer& answer);
  void Settle(Client& client);
  void Drop(Client& client);

  std::string path_;
  Answer answer_;
  FileDescriptor listener_;
  QSocketNotifier* listening_ = nullptr;
  std::map<int, std::unique_ptr<Client>> clients_;
  State state_ = State::Failed;
  std::string reason_;
  QTimer resume_;  ///< lets clients in again after the process ran out of files
  QObject owner_;  ///< of all notifiers, which go before the sockets that they watch
};

}  // namespace kestrune::platform
