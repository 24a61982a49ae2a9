#include "platform/xsmp/SessionEnd.h"

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <utility>

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "base/Ignored.h"

namespace kestrune::platform {
namespace {

constexpr unsigned long kCallbacks =
    SmcSaveYourselfProcMask | SmcDieProcMask | SmcSaveCompleteProcMask | SmcShutdownCancelledProcMask;

/// Sends the session manager a property of its client: one text, or a list of them.
void SetProperty(SmcConn connection, std::string name, std::string type, std::vector<std::string> values) {
  std::vector<SmPropValue> list;
  list.reserve(values.size());
  for (std::string& value : values) list.push_back({static_cast<int>(value.size()), value.data()});
  SmProp property{.name = name.data(),
                  .type = type.data(),
                  .num_vals = static_cast<int>(list.size()),
                  .vals = list.data()};
  std::array<SmProp*, 1> properties{&property};
  SmcSetProperties(connection, static_cast<int>(properties.size()), properties.data());
}

// The libraries' own handlers end the program when the session manager dies or errs; here it outlives that.
void OutliveFailures() {
  IceSetIOErrorHandler([](IceConn) {});
  IceSetErrorHandler([](IceConn, int, int, unsigned long, int, int, IcePointer) {});
  SmcSetErrorHandler([](SmcConn, int, int, unsigned long, int, int, SmPointer) {});
}

/// While it lives, writing to a session manager that has died is an error and not the end of the program.
class WithoutPipeSignal {
 public:
  WithoutPipeSignal() {
    ::sigemptyset(&pipe_);
    ::sigaddset(&pipe_, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  ~WithoutPipeSignal() {
    const timespec now{};
    while (::sigtimedwait(&pipe_, nullptr, &now) == SIGPIPE) {
    }
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  WithoutPipeSignal(const WithoutPipeSignal&) = delete;
  WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;

 private:
  sigset_t pipe_{};
  sigset_t before_{};
};

}  // namespace

struct SessionEnd::Connection {
  SmcConn Client;

  [[nodiscard]] IceConn Line() const { return SmcGetIceConnection(Client); }
};

SessionEnd::SessionEnd(const std::vector<std::string>& command, std::function<void()> handler)
    : handler_(std::move(handler)) {
  Open();
  if (connection_ == nullptr) return;
  Introduce(command);
  const int socket = IceConnectionNumber(connection_->Line());
  base::Ignored(::fcntl(socket, F_SETFD, FD_CLOEXEC));
  notifier_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { Read(); });
}

SessionEnd::~SessionEnd() {
  const WithoutPipeSignal quiet;
  if (connection_ != nullptr && kept_) SmcSaveYourselfDone(connection_->Client, True);
  Disconnect();
}

void SessionEnd::Open() {
  const char* address = std::getenv("SESSION_MANAGER");
  if (address == nullptr || *address == '\0') return;
  OutliveFailures();
  SmcCallbacks callbacks{};
  callbacks.save_yourself.client_data = this;
  callbacks.save_yourself.callback = [](SmcConn connection, SmPointer self, int /*type*/, Bool shutdown,
                                        int /*interaction*/, Bool /*fast*/) {
    if (shutdown == False) {
      SmcSaveYourselfDone(connection, True);
    } else {
      static_cast<SessionEnd*>(self)->kept_ = true;
      static_cast<SessionEnd*>(self)->Ending();
    }
  };
  callbacks.die.client_data = this;
  callbacks.die.callback = [](SmcConn /*connection*/, SmPointer self) {
    static_cast<SessionEnd*>(self)->over_ = true;
    static_cast<SessionEnd*>(self)->Ending();
  };
  callbacks.save_complete.callback = [](SmcConn /*connection*/, SmPointer /*self*/) {};
  callbacks.shutdown_cancelled.client_data = this;
  callbacks.shutdown_cancelled.callback = [](SmcConn connection, SmPointer self) {
    // Too late for this program, but the session manager wants its answer all the same.
    if (std::exchange(static_cast<SessionEnd*>(self)->kept_, false)) SmcSaveYourselfDone(connection, True);
  };
  char* id = nullptr;
  std::array<char, 256> error{};
  // Its own address as the context keeps the connection apart from any other of this process.
  SmcConn const client = SmcOpenConnection(nullptr, this, SmProtoMajor, SmProtoMinor, kCallbacks, &callbacks,
                                           nullptr, &id, static_cast<int>(error.size()), error.data());
  std::free(id);
  if (client != nullptr) connection_ = std::make_unique<Connection>(Connection{client});
}

void SessionEnd::Introduce(const std::vector<std::string>& command) {
  SmcConn const client = connection_->Client;
  SetProperty(client, SmProgram, SmARRAY8, {command.front()});
  SetProperty(client, SmUserID, SmARRAY8, {fmt::to_string(::getuid())});
  SetProperty(client, SmCloneCommand, SmLISTofARRAY8, command);
  SetProperty(client, SmRestartCommand, SmLISTofARRAY8, command);
}

void SessionEnd::Read() {
  const WithoutPipeSignal quiet;
  const IceProcessMessagesStatus status = IceProcessMessages(connection_->Line(), nullptr, nullptr);
  if (status == IceProcessMessagesIOError) {
    IceSetShutdownNegotiation(connection_->Line(), False);
    over_ = true;
  }
  if (over_) Disconnect();
}

void SessionEnd::Ending() {
  if (std::exchange(told_, true)) return;
  handler_();
}

void SessionEnd::Disconnect() {
  if (connection_ == nullptr) return;
  notifier_.reset();
  SmcCloseConnection(connection_->Client, 0, nullptr);
  connection_.reset();
}

}  // namespace kestrune::platform
