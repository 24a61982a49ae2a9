#include "receiver/JsonLines.h"

#include <nlohmann/json.hpp>

namespace kestrune::receiver {

void JsonLines::Write(std::chrono::milliseconds time, std::string_view event,
                      const nlohmann::ordered_json& fields) {
  nlohmann::ordered_json line;
  line["time"] = static_cast<double>(time.count()) / 1000;
  line["event"] = event;
  line.update(fields);
  out_ << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n' << std::flush;
}

void JsonLines::Write(std::chrono::milliseconds time, std::string_view event) {
  Write(time, event, nlohmann::ordered_json::object());
}

}  // namespace kestrune::receiver
