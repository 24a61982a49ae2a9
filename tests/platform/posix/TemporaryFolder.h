#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace kestrune::test {

/// A folder of the test's own, gone with all it holds at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path().string() + "/kestrune-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] std::string operator/(std::string_view name) const { return path_ + "/" + std::string(name); }

 private:
  std::string path_;
};

inline void PutFile(const std::string& path, std::string_view text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
}

/// The text of a file, or "(absent)".
inline std::string FileText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return "(absent)";
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline unsigned FileMode(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0U;
}

/// All names in a folder, hidden ones too, so that a test sees what was left behind.
inline std::size_t CountNames(const std::string& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) ++count;
  return count;
}

/// While it lives, a test that root runs has the rights of an ordinary user: root is refused nothing.
class OrdinaryUser {
 public:
  OrdinaryUser() : wasRoot_(::geteuid() == 0) {
    if (wasRoot_ && ::seteuid(65534) != 0) throw std::runtime_error("cannot give up root");
  }
  ~OrdinaryUser() {
    if (wasRoot_ && ::seteuid(0) != 0) std::abort();
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

 private:
  bool wasRoot_;
};

/// While it lives, an environment variable has this value; none if null.
class VariableValue {
 public:
  VariableValue(const char* name, const char* value) : name_(name) {
    const char* old = std::getenv(name);
    wasSet_ = old != nullptr;
    if (wasSet_) old_ = old;
    Set(value);
  }
  VariableValue(const char* name, const std::string& value) : VariableValue(name, value.c_str()) {}
  ~VariableValue() { Set(wasSet_ ? old_.c_str() : nullptr); }
  VariableValue(const VariableValue&) = delete;
  VariableValue& operator=(const VariableValue&) = delete;

 private:
  void Set(const char* value) {
    if (value == nullptr) {
      ::unsetenv(name_.c_str());
    } else {
      ::setenv(name_.c_str(), value, 1);
    }
  }

  std::string name_;
  std::string old_;
  bool wasSet_ = false;
};

}  // namespace kestrune::test
