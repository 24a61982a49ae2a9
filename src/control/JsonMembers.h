#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/DatePattern.h"
#include "base/DateValue.h"
#include "control/ReportJson.h"
#include "platform/HistoryRows.h"

// How a report's members become the members of a JSON object and come back. A file that includes this lists them once,
// in functions `static void ForEachMember(EitherConst<Report> auto& report, auto& visit)` of this namespace.

namespace kestrune::control {

template <typename Type, typename Report>
concept EitherConst = std::same_as<std::remove_const_t<Type>, Report>;

/// A moment as JSON has it; empty if there is none.
[[nodiscard]] inline std::string MomentText(std::optional<base::DateValue> moment) {
  return moment ? base::FormatDate(*moment, "yyyy-mm-dd hh:nn:ss") : std::string();
}

/// Visits a value of an enumeration as its word. One that is read and has no such word has its first value.
template <typename Value, std::size_t Count>
void VisitWord(const char* name, Value& value, const std::array<std::string_view, Count>& words,
               auto& visit) {
  std::string word(words.at(static_cast<std::size_t>(value)));
  visit(name, word);
  if constexpr (!std::is_const_v<Value>) {
    for (std::size_t i = 0; i < Count; ++i)
      if (words.at(i) == word) value = static_cast<Value>(i);
  }
}

/// What became of a song, a word for each fate.
inline constexpr std::array<std::string_view, platform::kSongFates> kFateWords{
    "kept",      "incomplete", "not renamed", "too short", "too long",   "not grabbed", "killed",
    "duplicate", "no sound",   "failed",      "not whole", "not wanted", "kept later"};

/// Puts each member into an object.
struct Writer {
  Json Object = Json::object();

  template <typename Value>
  void operator()(const char* name, const Value& value) {
    Object[name] = value;
  }
  void operator()(const char* name, const base::DateValue& moment) { Object[name] = MomentText(moment); }
  void operator()(const char* name, const std::optional<base::DateValue>& moment) {
    Object[name] = MomentText(moment);
  }
  void operator()(const char* name, const std::vector<std::string>& texts) { Object[name] = texts; }
  template <typename Report>
  void operator()(const char* name, const std::vector<Report>& reports);
};

/// Takes each member out of an object, and remembers whether all were there.
struct Reader {
  const Json& Object;
  bool Complete = true;

  void operator()(const char* name, std::string& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_string()) {
      value = member->get_ref<const std::string&>();
    } else {
      Complete = false;
    }
  }
  void operator()(const char* name, std::vector<std::string>& value) {
    const Json* member = Member(name);
    Complete = Complete && member != nullptr && member->is_array();
    if (!Complete) return;
    for (const Json& text : *member) {
      Complete = Complete && text.is_string();
      if (Complete) value.push_back(text.get<std::string>());
    }
  }
  void operator()(const char* name, bool& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_boolean()) {
      value = member->get<bool>();
    } else {
      Complete = false;
    }
  }
  void operator()(const char* name, double& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_number()) {
      value = member->get<double>();
    } else {
      Complete = false;
    }
  }
  template <std::integral Integer>
  void operator()(const char* name, Integer& value) {
    const Json* member = Member(name);
    if (member != nullptr && member->is_number_integer() &&
        std::in_range<Integer>(member->get<std::int64_t>())) {
      value = member->get<Integer>();
    } else {
      Complete = false;
    }
  }
  void operator()(const char* name, base::DateValue& moment) {
    std::optional<base::DateValue> read;
    (*this)(name, read);
    Complete = Complete && read.has_value();
    if (read) moment = *read;
  }
  void operator()(const char* name, std::optional<base::DateValue>& moment) {
    std::string text;
    (*this)(name, text);
    moment = base::ParseDate(text);
    Complete = Complete && (moment.has_value() || text.empty());
  }
  template <typename Report>
  void operator()(const char* name, std::vector<Report>& reports);

 private:
  [[nodiscard]] const Json* Member(const char* name) const {
    const auto found = Object.find(name);
    return found == Object.end() ? nullptr : &*found;
  }
};

template <typename Report>
[[nodiscard]] Json ObjectOf(const Report& report) {
  Writer writer;
  ForEachMember(report, writer);
  return std::move(writer.Object);
}

template <typename Report>
[[nodiscard]] Json ArrayOf(const std::vector<Report>& reports) {
  Json rows = Json::array();
  for (const Report& report : reports) rows.push_back(ObjectOf(report));
  return rows;
}

template <typename Report>
[[nodiscard]] std::optional<Report> FromObject(const Json& json) {
  if (!json.is_object()) return std::nullopt;
  Report report;
  Reader reader{json};
  ForEachMember(report, reader);
  if (!reader.Complete) return std::nullopt;
  return report;
}

template <typename Report>
[[nodiscard]] std::optional<std::vector<Report>> FromArray(const Json& json) {
  if (!json.is_array()) return std::nullopt;
  std::vector<Report> reports;
  for (const Json& row : json) {
    std::optional<Report> report = FromObject<Report>(row);
    if (!report) return std::nullopt;
    reports.push_back(*std::move(report));
  }
  return reports;
}

template <typename Report>
void Writer::operator()(const char* name, const std::vector<Report>& reports) {
  Object[name] = ArrayOf(reports);
}

template <typename Report>
void Reader::operator()(const char* name, std::vector<Report>& reports) {
  const Json* member = Member(name);
  auto read = member == nullptr ? std::nullopt : FromArray<Report>(*member);
  Complete = Complete && read.has_value();
  if (read) reports = *std::move(read);
}

}  // namespace kestrune::control
