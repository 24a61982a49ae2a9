#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kestrune::test {

/// What a server sends, after how long a pause.
struct Piece {
  std::string Bytes;
  std::chrono::milliseconds Before{0};
};

/// What becomes of a connection once everything has been sent.
enum class Ending {
  Closed,
  Reset,     ///< as if the machine had gone
  KeptOpen,  ///< until the other side or the server goes
};

struct Answer {
  std::vector<Piece> Pieces;
  Ending End = Ending::Closed;
  int Times = 1;  ///< how often the pieces are sent, one round after the other
};

/// A server on the loopback interface, on a thread of its own: it reads a request up to its empty line and answers
/// with the bytes that the test has typed, whatever was asked. Each connection takes the next answer; the last one
/// serves all further ones.
class LoopbackServer {
 public:
  explicit LoopbackServer(std::vector<Answer> answers);
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  [[nodiscard]] std::uint16_t Port() const { return port_; }
  /// "http://127.0.0.1:port" and the path.
  [[nodiscard]] std::string Address(const std::string& path) const;
  /// The requests so far, byte for byte.
  [[nodiscard]] std::vector<std::string> Requests() const;

 private:
  void Serve();
  void Talk(int connection, const Answer& answer);

  std::vector<Answer> answers_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<bool> stopped_{false};
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

}  // namespace kestrune::test
