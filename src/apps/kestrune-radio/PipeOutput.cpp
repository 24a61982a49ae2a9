#include "apps/kestrune-radio/PipeOutput.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrune::radio_program {
namespace {

constexpr std::size_t kFrameBytes = 4;

}  // namespace

PipeOutput::PipeOutput(std::string path, int sampleRate)
    : path_(std::move(path)), longestWait_(static_cast<std::size_t>(sampleRate) * kFrameBytes) {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) {
    made_ = ::mkfifo(path_.c_str(), 0600) == 0;
    if (!made_) error_ = fmt::format("no pipe can be made at {}: {}", path_, std::strerror(errno));
  } else if (S_ISREG(status.st_mode)) {
    file_ = platform::FileDescriptor(::open(path_.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
    if (!file_.IsOpen()) error_ = fmt::format("{} cannot be written: {}", path_, std::strerror(errno));
  } else if (!S_ISFIFO(status.st_mode)) {
    error_ = fmt::format("{} is neither a pipe nor a file", path_);
  }
}

PipeOutput::~PipeOutput() {
  if (made_) ::unlink(path_.c_str());
}

void PipeOutput::Play(std::span<const std::int16_t> interleaved) {
  if (!file_.IsOpen()) {
    // Opening succeeds from the moment on at which somebody reads.
    file_ = platform::FileDescriptor(::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    if (!file_.IsOpen()) return;
  }
  const std::size_t size = interleaved.size_bytes();
  if (waiting_.size() + size > longestWait_) {
    lostFrames_ += static_cast<std::int64_t>(size / kFrameBytes);
  } else if (size > 0) {
    const std::size_t before = waiting_.size();
    waiting_.resize(before + size);
    std::memcpy(waiting_.data() + before, interleaved.data(), size);
  }
  WriteOut();
}

void PipeOutput::WriteOut() {
  std::size_t written = 0;
  while (written < waiting_.size()) {
    const ssize_t count = ::write(file_.Number(), waiting_.data() + written, waiting_.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      break;
    } else if (errno != EINTR) {
      // The reader has gone; the next one starts afresh.
      file_.Close();
      waiting_.clear();
      return;
    }
  }
  waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(written));
}

}  // namespace kestrune::radio_program
