#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrune::platform {

/// Headers are composed and read as byte strings.
inline std::span<const std::byte> AsBytes(std::string_view text) {
  return std::as_bytes(std::span<const char>(text.data(), text.size()));
}

inline void AppendLe(std::string& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
}

inline void AppendBe(std::string& bytes, std::uint64_t value, int count) {
  for (int i = count - 1; i >= 0; --i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
}

/// The bytes must reach to `at` + `count`.
[[nodiscard]] inline std::uint64_t ReadLe(std::string_view bytes, std::size_t at, int count) {
  std::uint64_t value = 0;
  for (int i = count - 1; i >= 0; --i) {
    value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  }
  return value;
}

}  // namespace kestrune::platform
