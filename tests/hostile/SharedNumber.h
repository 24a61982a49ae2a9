#pragma once

#include <atomic>
#include <cstdint>
#include <new>

#include <sys/mman.h>

namespace kestrune::test {

/// A number that a forked process can set.
class SharedNumber {
 public:
  SharedNumber()
      : page_(::mmap(nullptr, sizeof(Number), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)),
        number_(new (page_) Number(0)) {}
  ~SharedNumber() { ::munmap(page_, sizeof(Number)); }
  SharedNumber(const SharedNumber&) = delete;
  SharedNumber& operator=(const SharedNumber&) = delete;
  [[nodiscard]] std::atomic<std::int64_t>& operator*() const { return *number_; }
  [[nodiscard]] std::atomic<std::int64_t>* operator->() const { return number_; }

 private:
  using Number = std::atomic<std::int64_t>;
  void* page_;
  Number* number_;
};

}  // namespace kestrune::test
