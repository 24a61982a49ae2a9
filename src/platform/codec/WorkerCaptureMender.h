#pragma once

#include <functional>
#include <future>
#include <memory>
#include <stop_token>
#include <string_view>

#include "base/EventLoop.h"
#include "platform/CaptureMender.h"
#include "platform/codec/DiskFile.h"

namespace kestrune::platform {

/// Mends captures on a thread of its own, which lives as long as a call. The loop must outlive it.
class WorkerCaptureMender final : public CaptureMender {
 public:
  explicit WorkerCaptureMender(base::EventLoop& loop);
  ~WorkerCaptureMender() override { Stop(); }
  WorkerCaptureMender(const WorkerCaptureMender&) = delete;
  WorkerCaptureMender& operator=(const WorkerCaptureMender&) = delete;

  void Find(std::string_view folder, std::string_view pattern, FoundHandler found) override;
  void Mend(std::string_view path, MendedHandler mended) override;
  void Stop() override;

 private:
  /// The answer to a call, to be given from the event loop.
  using Answer = std::function<void()>;

  void Begin(std::function<Answer(const std::stop_token& stop)> work);
  void Look();

  std::unique_ptr<base::Timer> tmrLook_;
  std::stop_source stop_;
  DiskFile file_;  // the thread's while it runs
  std::future<Answer> running_;
};

/// Mends a file on the spot, by the end of its name. `file` holds it afterwards, unless it is untouched.
[[nodiscard]] MendedCapture MendCapture(DiskFile& file, std::string_view path, const std::stop_token& stop);

}  // namespace kestrune::platform
