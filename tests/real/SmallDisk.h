#pragma once

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include <sys/mount.h>

namespace kestrune::test {

/// A small disk in a folder, for as long as the object lives. Root alone may make one.
class SmallDisk {
 public:
  /// The size as mount takes it, such as "1200k".
  SmallDisk(std::string folder, const char* size) : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
    Mount(size, 0);
  }
  ~SmallDisk() {
    if (error_ == 0) ::umount2(folder_.c_str(), MNT_DETACH);
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  /// Why there is none; empty if there is.
  [[nodiscard]] std::string Trouble() const { return error_ == 0 ? "" : std::strerror(error_); }
  [[nodiscard]] bool Full() const { return std::filesystem::space(folder_).available < 8192; }
  /// Gives the disk another size; what is on it stays.
  void Resize(const char* size) { Mount(size, MS_REMOUNT); }

 private:
  void Mount(const char* size, unsigned long flags) {
    const std::string options = std::string("size=") + size;
    const bool done =
        ::mount("tmpfs", folder_.c_str(), "tmpfs", MS_NOSUID | MS_NODEV | flags, options.c_str()) == 0;
    error_ = done ? 0 : errno;
  }

  std::string folder_;
  int error_ = 0;
};

}  // namespace kestrune::test
