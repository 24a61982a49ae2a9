#include "platform/posix/WorkerFileSync.h"

#include <cerrno>
#include <chrono>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/FileDescriptor.h"
#include "platform/posix/FileNames.h"
#include "platform/posix/SystemError.h"

namespace kestrune::platform {

namespace {

constexpr std::chrono::milliseconds kReportInterval{200};

/// Not every file system can sync a folder; one that cannot has nothing to bring to the disk.
bool Succeeded(int answer) {
  return answer == 0 || errno == EINVAL || errno == ENOTSUP;
}

}  // namespace

int SyncToDisk(const std::string& path) {
  const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat status {};
  if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0 || ::fsync(file.Number()) != 0) return errno;

  std::string folder = FolderOf(path);
  for (bool nearest = true;; nearest = false) {
    const FileDescriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    struct stat above {};
    const bool sameVolume =
        open.IsOpen() && ::fstat(open.Number(), &above) == 0 && above.st_dev == status.st_dev;
    // A folder that this user cannot read was not made by the program.
    if (!sameVolume) return open.IsOpen() || !nearest ? 0 : errno;
    if (!Succeeded(::fsync(open.Number()))) return errno;
    std::string next = FolderOf(folder);
    if (next == folder || folder == ".") return 0;
    folder = std::move(next);
  }
}

WorkerFileSync::WorkerFileSync(base::EventLoop& loop)
    : tmrReport_(loop.MakeTimer(kReportInterval, [this] { Report(); })), worker_([this] { Work(); }) {}

WorkerFileSync::~WorkerFileSync() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  changed_.notify_one();
  worker_.join();
}

void WorkerFileSync::Sync(std::string_view path) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.emplace_back(path);
  }
  changed_.notify_one();
  tmrReport_->SetEnabled(true);
}

void WorkerFileSync::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    const std::string path = std::move(waiting_.front());
    waiting_.pop_front();
    busy_ = true;
    lock.unlock();
    const int error = SyncToDisk(path);
    lock.lock();
    busy_ = false;
    if (error != 0 && error != ENOENT) failures_.emplace_back(path, FailedWith(error));
  }
}

void WorkerFileSync::Report() {
  std::vector<Failure> failures;
  {
    const std::lock_guard lock(mutex_);
    failures.swap(failures_);
    if (!busy_ && waiting_.empty()) tmrReport_->SetEnabled(false);
  }
  for (const auto& [path, failure] : failures) {
    if (handler_) handler_(path, failure);
  }
}

}  // namespace kestrune::platform
