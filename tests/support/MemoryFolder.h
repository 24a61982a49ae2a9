#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrune::test {

/// A folder of the test's own in the machine's memory, if it has one there, gone with all it holds at the end: for tests
/// that write much.
class MemoryFolder {
 public:
  MemoryFolder() {
    const std::string memory = "/dev/shm";
    std::error_code none;
    std::string name =
        (std::filesystem::is_directory(memory, none) ? memory
                                                     : std::filesystem::temp_directory_path().string()) +
        "/kestrune-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~MemoryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  MemoryFolder(const MemoryFolder&) = delete;
  MemoryFolder& operator=(const MemoryFolder&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

}  // namespace kestrune::test
