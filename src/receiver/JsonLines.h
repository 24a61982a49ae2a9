#pragma once

#include <chrono>
#include <ostream>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace kestrune::receiver {

/// What the receiver did, as one JSON object on each line, with the seconds since its start as "time" and what
/// happened as "event". Each line is flushed, so that a reader can follow.
class JsonLines {
 public:
  /// The stream must outlive this object.
  explicit JsonLines(std::ostream& out) : out_(out) {}

  /// `fields` is an object; text in it that is not UTF-8 is written with replacement characters.
  void Write(std::chrono::milliseconds time, std::string_view event, const nlohmann::ordered_json& fields);
  void Write(std::chrono::milliseconds time, std::string_view event);

 private:
  std::ostream& out_;
};

}  // namespace kestrune::receiver
