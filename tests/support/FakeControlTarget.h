#pragma once

#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "control/ControlTarget.h"

namespace kestrune::test {

/// Notes each call as one text, and answers with what the test put in.
class FakeControlTarget : public control::ControlTarget {
 public:
  std::vector<std::string> Calls;
  control::StatusReport NextStatus;
  std::vector<control::ChannelReport> NextChannels;
  control::CommandResult NextResult{true, ""};
  control::SettingResult NextSetting{true, "", ""};
  control::UpdateResult NextUpdate{true, "", {}};
  std::vector<std::string> Log;
  std::vector<control::ScheduleReport> NextSchedule;
  control::ListsReport NextLists;
  control::ScheduleChange Change;  ///< the last one asked for

  control::StatusReport Status() override {
    Calls.emplace_back("Status");
    return NextStatus;
  }
  std::vector<control::ChannelReport> Channels() override {
    Calls.emplace_back("Channels");
    return NextChannels;
  }
  control::CommandResult Record() override { return Note("Record"); }
  control::CommandResult Stop() override { return Note("Stop"); }
  control::CommandResult Tune(int channelNumber) override {
    return Note(fmt::format("Tune {}", channelNumber));
  }
  control::CommandResult Mute(bool muted) override { return Note(fmt::format("Mute {}", muted)); }
  std::vector<std::string> LogLines(std::size_t atMost) override {
    Calls.push_back(fmt::format("LogLines {}", atMost));
    return Log;
  }
  control::SettingResult Get(std::string_view key) override {
    Calls.push_back(fmt::format("Get {}", key));
    return NextSetting;
  }
  control::CommandResult Set(std::string_view key, std::string_view value) override {
    return Note(fmt::format("Set {}={}", key, value));
  }
  std::vector<control::ScheduleReport> Schedule() override {
    Calls.emplace_back("Schedule");
    return NextSchedule;
  }
  control::CommandResult SetSchedule(const control::ScheduleChange& change) override {
    Change = change;
    return Note(fmt::format("SetSchedule {}", change.Number));
  }
  control::CommandResult EnableSchedule(int number, bool enabled) override {
    return Note(fmt::format("EnableSchedule {} {}", number, enabled));
  }
  control::CommandResult ClearSchedule(int number) override {
    return Note(fmt::format("ClearSchedule {}", number));
  }
  control::ListsReport Lists() override {
    Calls.emplace_back("Lists");
    return NextLists;
  }
  control::CommandResult AddToList(schedule::RestrictList list, std::string_view text) override {
    return Note(fmt::format("AddToList {} {}", static_cast<int>(list), text));
  }
  control::CommandResult RemoveFromList(schedule::RestrictList list, std::string_view text) override {
    return Note(fmt::format("RemoveFromList {} {}", static_cast<int>(list), text));
  }
  control::UpdateResult Update() override {
    Calls.emplace_back("Update");
    return NextUpdate;
  }
  control::CommandResult Quit() override { return Note("Quit"); }

 private:
  control::CommandResult Note(std::string call) {
    Calls.push_back(std::move(call));
    return NextResult;
  }
};

}  // namespace kestrune::test
