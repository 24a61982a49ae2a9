#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "base/EventLoop.h"
#include "platform/FileSync.h"

namespace kestrune::platform {

/// Brings files to the disk on a thread of its own. The loop must outlive it.
class WorkerFileSync final : public FileSync {
 public:
  explicit WorkerFileSync(base::EventLoop& loop);
  ~WorkerFileSync() override;
  WorkerFileSync(const WorkerFileSync&) = delete;
  WorkerFileSync& operator=(const WorkerFileSync&) = delete;

  void Sync(std::string_view path) override;
  void SetFailureHandler(FailureHandler handler) override { handler_ = std::move(handler); }

 private:
  using Failure = std::pair<std::string, base::Result>;

  /// The thread's work, until the queue is empty and the object is about to go.
  void Work();
  /// Hands the failures of the thread to the handler.
  void Report();

  std::mutex mutex_;
  std::condition_variable changed_;
  // Under the mutex.
  std::deque<std::string> waiting_;
  bool busy_ = false;
  bool ending_ = false;
  std::vector<Failure> failures_;

  FailureHandler handler_;
  std::unique_ptr<base::Timer> tmrReport_;
  std::thread worker_;
};

/// Brings a file to the disk on the spot: its data, its name, and the folders above it on the same volume. 0, or the
/// error.
[[nodiscard]] int SyncToDisk(const std::string& path);

}  // namespace kestrune::platform
