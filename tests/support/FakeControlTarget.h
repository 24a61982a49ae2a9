#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/Result.h"
#include "control/ControlTarget.h"

namespace kestrune::test {

/// Notes each call as one text, and answers at once with what the test put in, unless it keeps the wishes.
class FakeControlTarget : public control::ControlTarget {
 public:
  std::vector<std::string> Calls;
  control::StatusReport NextStatus;
  std::vector<control::ChannelReport> NextChannels;
  base::Result NextResult = base::Result::Done();
  /// If set, wishes are kept here and not answered; the test answers them.
  bool KeepWishes = false;
  std::vector<control::Answered> Kept;
  control::SettingResult NextSetting{true, "", ""};
  control::UpdateResult NextUpdate{true, "", {}};
  std::vector<std::string> Log;
  std::vector<control::ScheduleReport> NextSchedule;
  control::ListsReport NextLists;
  history::Report NextReport;
  std::vector<platform::HistoryPlay> NextPlays;
  std::vector<platform::PlayCount> NextCounts;
  std::vector<control::CutReport> NextCuts;
  std::vector<control::StationLagReport> NextStationLags;
  control::HintsResult NextHints{.Done = true, .Reason = "", .Hints = {}};
  std::vector<control::ShelvedReport> NextShelf;
  control::ScheduleChange Change;  ///< the last one asked for

  control::StatusReport Status() override {
    Calls.emplace_back("Status");
    return NextStatus;
  }
  std::vector<control::ChannelReport> Channels() override {
    Calls.emplace_back("Channels");
    return NextChannels;
  }
  void Record(control::Answered answered) override { Note("Record", std::move(answered)); }
  void Stop(control::Answered answered) override { Note("Stop", std::move(answered)); }
  void Tune(int channelNumber, control::Answered answered) override {
    Note(fmt::format("Tune {}", channelNumber), std::move(answered));
  }
  void Mute(bool muted, control::Answered answered) override {
    Note(fmt::format("Mute {}", muted), std::move(answered));
  }
  std::vector<std::string> LogLines(std::size_t atMost) override {
    Calls.push_back(fmt::format("LogLines {}", atMost));
    return Log;
  }
  control::SettingResult Get(std::string_view key) override {
    Calls.push_back(fmt::format("Get {}", key));
    return NextSetting;
  }
  void Keep(int number, control::Answered answered) override {
    Note(fmt::format("Keep {}", number), std::move(answered));
  }
  void KeepCurrent(control::Answered answered) override { Note("KeepCurrent", std::move(answered)); }
  std::vector<control::ShelvedReport> Shelf() override {
    Calls.emplace_back("Shelf");
    return NextShelf;
  }
  void Set(std::string_view key, std::string_view value, control::Answered answered) override {
    Note(fmt::format("Set {}={}", key, value), std::move(answered));
  }
  std::vector<control::ScheduleReport> Schedule() override {
    Calls.emplace_back("Schedule");
    return NextSchedule;
  }
  void SetSchedule(const control::ScheduleChange& change, control::Answered answered) override {
    Change = change;
    Note(fmt::format("SetSchedule {}", change.Number), std::move(answered));
  }
  void EnableSchedule(int number, bool enabled, control::Answered answered) override {
    Note(fmt::format("EnableSchedule {} {}", number, enabled), std::move(answered));
  }
  void ClearSchedule(int number, control::Answered answered) override {
    Note(fmt::format("ClearSchedule {}", number), std::move(answered));
  }
  control::ListsReport Lists() override {
    Calls.emplace_back("Lists");
    return NextLists;
  }
  void AddToList(schedule::RestrictList list, std::string_view text, control::Answered answered) override {
    Note(fmt::format("AddToList {} {}", static_cast<int>(list), text), std::move(answered));
  }
  void RemoveFromList(schedule::RestrictList list, std::string_view text,
                      control::Answered answered) override {
    Note(fmt::format("RemoveFromList {} {}", static_cast<int>(list), text), std::move(answered));
  }
  void Report(const control::ReportQuestion& question, control::ReportAnswered answered) override {
    Calls.push_back(fmt::format("Report {}", question.Since));
    answered(NextResult, NextReport);
  }
  void History(const control::HistoryQuestion& question, control::HistoryAnswered answered) override {
    Calls.push_back(fmt::format("History {}|{}|{}|{}|{}", question.Text, question.Channel, question.Since,
                                question.Days, question.Limit));
    answered(NextResult, NextPlays);
  }
  void MostPlayed(const control::MostPlayedQuestion& question,
                  control::MostPlayedAnswered answered) override {
    Calls.push_back(fmt::format("MostPlayed {}|{}|{}|{}|{}",
                                question.As == platform::PlayedAs::Song ? "songs" : "artists",
                                question.Channel, question.Since, question.Days, question.Limit));
    answered(NextResult, NextCounts);
  }
  void Cuts(const control::CutsQuestion& question, control::CutsAnswered answered) override {
    Calls.push_back(fmt::format("Cuts {}|{}", question.Channel, question.Limit));
    answered(NextResult, NextCuts);
  }
  std::vector<control::StationLagReport> StationLags(int channel) override {
    Calls.push_back(fmt::format("StationLags {}", channel));
    return NextStationLags;
  }
  control::HintsResult Hints() override {
    Calls.emplace_back("Hints");
    return NextHints;
  }
  void Update(std::function<void(const control::UpdateResult&)> answered) override {
    Calls.emplace_back("Update");
    answered(NextUpdate);
  }
  void Quit(control::Answered answered) override { Note("Quit", std::move(answered)); }

 private:
  void Note(std::string call, control::Answered answered) {
    Calls.push_back(std::move(call));
    if (KeepWishes) {
      Kept.push_back(std::move(answered));
    } else {
      answered(NextResult);
    }
  }
};

}  // namespace kestrune::test
