#pragma once

#include <string>
#include <utility>

namespace kestrune::base {

/// How a step went: done, or failed with a cause. The cause is one line in words that a user can act on, without
/// a full stop, such as "the disk is full"; it is empty exactly if the step was done.
class [[nodiscard]] Result {
 public:
  [[nodiscard]] static Result Done() { return {}; }
  /// `cause` must not be empty.
  [[nodiscard]] static Result Failed(std::string cause) { return Result(std::move(cause)); }

  [[nodiscard]] bool Ok() const { return cause_.empty(); }
  /// The same, for a condition.
  explicit operator bool() const { return Ok(); }
  [[nodiscard]] const std::string& Cause() const { return cause_; }

  bool operator==(const Result&) const = default;

 private:
  Result() = default;
  explicit Result(std::string cause) : cause_(std::move(cause)) {}

  std::string cause_;
};

}  // namespace kestrune::base
