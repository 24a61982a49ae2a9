#pragma once

#include <cstdint>

#include <malloc.h>

namespace kestrune::test {

/// What the process has allocated, in bytes; 0 where a sanitizer keeps the memory.
inline std::int64_t BytesInUse() {
  const struct mallinfo2 info = ::mallinfo2();
  return static_cast<std::int64_t>(info.uordblks + info.hblkhd);
}

}  // namespace kestrune::test
