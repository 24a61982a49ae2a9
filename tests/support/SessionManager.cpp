// A session manager for tests: real messages of the real protocol, told what to do by lines from a pipe, whose path
// is the argument.
//
// It prints its address first, as SESSION_MANAGER wants it, and "ready". Each client has a number, from 1. Told "end"
// or "save", it asks all clients to save themselves because the session ends or is only saved; told "cancel", it takes
// an end back; told "die", it lets all clients go. It prints "N registered", "N restarts by COMMAND", "N saved" for a
// client's answer and "N closed" when it leaves.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

struct Client {
  int Number = 0;
  SmsConn Connection = nullptr;
};

std::map<SmsConn, std::unique_ptr<Client>> clients;
int lastNumber = 0;

Client& Of(SmPointer data) {
  return *static_cast<Client*>(data);
}

void Print(const Client& client, const std::string& what) {
  std::cout << client.Number << ' ' << what << std::endl;
}

void PrintCommand(const Client& client, const SmProp& command) {
  std::string text = "restarts by";
  for (int i = 0; i < command.num_vals; ++i) {
    const SmPropValue& word = command.vals[i];
    text += ' ' + std::string(static_cast<const char*>(word.value), static_cast<std::size_t>(word.length));
  }
  Print(client, text);
}

Status Accept(SmsConn connection, SmPointer /*data*/, unsigned long* mask, SmsCallbacks* callbacks,
              char** /*why*/) {
  auto& client = clients[connection] = std::make_unique<Client>(Client{++lastNumber, connection});
  *callbacks = {};
  callbacks->register_client = {[](SmsConn from, SmPointer data, char* previous) -> Status {
                                  if (previous != nullptr) {
                                    std::free(previous);
                                    return 0;
                                  }
                                  SmsRegisterClientReply(from, SmsGenerateClientID(from));
                                  SmsSaveYourself(from, SmSaveLocal, False, SmInteractStyleNone, False);
                                  Print(Of(data), "registered");
                                  return 1;
                                },
                                client.get()};
  callbacks->interact_request = {[](SmsConn from, SmPointer, int) { SmsInteract(from); }, client.get()};
  callbacks->interact_done = {[](SmsConn, SmPointer, Bool) {}, client.get()};
  callbacks->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, client.get()};
  callbacks->save_yourself_phase2_request = {[](SmsConn from, SmPointer) { SmsSaveYourselfPhase2(from); },
                                             client.get()};
  callbacks->save_yourself_done = {
      [](SmsConn, SmPointer data, Bool success) { Print(Of(data), success != False ? "saved" : "failed"); },
      client.get()};
  callbacks->close_connection = {[](SmsConn from, SmPointer data, int count, char** reasons) {
                                   Print(Of(data), "closed");
                                   SmFreeReasons(count, reasons);
                                   clients.erase(from);
                                   IceConn const ice = SmsGetIceConnection(from);
                                   SmsCleanUp(from);
                                   IceSetShutdownNegotiation(ice, False);
                                   IceCloseConnection(ice);
                                 },
                                 client.get()};
  callbacks->set_properties = {[](SmsConn, SmPointer data, int count, SmProp** properties) {
                                 for (int i = 0; i < count; ++i) {
                                   const SmProp& told = *properties[i];
                                   if (std::string(told.name) == SmRestartCommand)
                                     PrintCommand(Of(data), told);
                                   SmFreeProperty(properties[i]);
                                 }
                                 std::free(properties);
                               },
                               client.get()};
  callbacks->delete_properties = {[](SmsConn, SmPointer, int, char**) {}, client.get()};
  callbacks->get_properties = {[](SmsConn from, SmPointer) { SmsReturnProperties(from, 0, nullptr); },
                               client.get()};
  *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
          SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
          SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
          SmsGetPropertiesProcMask;
  return 1;
}

std::vector<IceConn> connections;

void Watch(IceConn connection, IcePointer /*data*/, Bool opening, IcePointer* /*watch*/) {
  if (opening != False) {
    connections.push_back(connection);
  } else {
    std::erase(connections, connection);
  }
}

void Obey(const std::string& word) {
  for (const auto& [connection, client] : clients) {
    if (word == "end") SmsSaveYourself(connection, SmSaveBoth, True, SmInteractStyleAny, False);
    if (word == "save") SmsSaveYourself(connection, SmSaveBoth, False, SmInteractStyleNone, False);
    if (word == "cancel") SmsShutdownCancelled(connection);
    if (word == "die") SmsDie(connection);
    IceFlush(SmsGetIceConnection(connection));
  }
}

}  // namespace

int main(int wordCount, char** words) {
  if (wordCount != 2) return 2;
  // Open for writing too, so that it never ends.
  const int orders = ::open(words[1], O_RDWR | O_CLOEXEC);
  if (orders < 0) return 1;
  std::array<char, 256> error{};
  if (SmsInitialize(
          "test", "1", Accept, nullptr, [](char*) -> Bool { return True; }, error.size(), error.data()) ==
      0) {
    std::cerr << error.data() << '\n';
    return 1;
  }
  int count = 0;
  IceListenObj* listeners = nullptr;
  if (IceListenForConnections(&count, &listeners, error.size(), error.data()) == 0) {
    std::cerr << error.data() << '\n';
    return 1;
  }
  IceSetIOErrorHandler([](IceConn) {});
  IceAddConnectionWatch(Watch, nullptr);
  for (int i = 0; i < count; ++i) IceSetHostBasedAuthProc(listeners[i], [](char*) -> Bool { return True; });
  std::cout << IceComposeNetworkIdList(count, listeners) << "\nready" << std::endl;

  for (;;) {
    std::vector<pollfd> sources{{.fd = orders, .events = POLLIN, .revents = 0}};
    for (int i = 0; i < count; ++i)
      sources.push_back({.fd = IceGetListenConnectionNumber(listeners[i]), .events = POLLIN, .revents = 0});
    const auto present = connections;
    for (IceConn connection : present)
      sources.push_back({.fd = IceConnectionNumber(connection), .events = POLLIN, .revents = 0});
    if (::poll(sources.data(), sources.size(), -1) < 0) continue;
    const auto ready = [&](std::size_t at) { return sources.at(at).revents != 0; };
    for (std::size_t i = 0; i < present.size(); ++i) {
      if (!ready(1 + static_cast<std::size_t>(count) + i)) continue;
      if (IceProcessMessages(present[i], nullptr, nullptr) == IceProcessMessagesIOError) {
        IceSetShutdownNegotiation(present[i], False);
        IceCloseConnection(present[i]);
      }
    }
    for (int i = 0; i < count; ++i) {
      if (!ready(1 + static_cast<std::size_t>(i))) continue;
      IceAcceptStatus status = IceAcceptFailure;
      IceConn const connection = IceAcceptConnection(listeners[i], &status);
      while (connection != nullptr && IceConnectionStatus(connection) == IceConnectPending)
        if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesSuccess) break;
    }
    if (ready(0)) {
      std::array<char, 64> line{};
      const ssize_t got = ::read(orders, line.data(), line.size());
      if (got > 1) Obey({line.data(), static_cast<std::size_t>(got) - 1});
    }
  }
}
