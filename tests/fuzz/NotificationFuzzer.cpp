// What the notification service says may be anything: numbers that it never gave, that it gave twice, or that are gone, and actions of
// any name, at any time. Each line of the input is a step. An action counts once, and only one that the message has which is shown
// under that number.

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/Text.h"
#include "platform/qtdbus/ShownNotices.h"

namespace {

using kestrune::platform::Notice;
using kestrune::platform::ShownNotices;

void Require(bool holds) {
  if (!holds) std::abort();
}

/// What is known of a subject from outside.
struct Known {
  std::optional<Notice> Waits;
  Notice Sent;
  std::uint32_t Number = 0;
  bool OnItsWay = false;
  bool Withdrawn = false;
};

class Run {
 public:
  /// A letter for the step, one for the subject, and the rest.
  void Take(std::string_view line) {
    if (line.size() < 2) return;
    const std::string subject(1, line[1]);
    const std::string_view rest = line.substr(2);
    switch (line[0]) {
      case 'w':
        Want(subject, rest);
        break;
      case 's':
        Send(subject);
        break;
      case 'a':
        Answer(subject, NumberOf(rest));
        break;
      case 'd':
        Withdraw(subject);
        break;
      case 'x':
        notices_.Closed(NumberOf(rest));
        // Of two subjects with one number, the first is meant.
        if (Known* one = WithNumber(NumberOf(rest))) one->Number = 0;
        break;
      case 'c':
        Choose(NumberOf(rest), subject);
        break;
      case 'D':
        notices_.DropWaiting();
        for (auto& [name, one] : known_) one.Waits.reset();
        break;
      case 'F':
        notices_.ForgetNumbers();
        for (auto& [name, one] : known_) one.Number = 0;
        break;
      default:
        break;
    }
    for (const auto& [name, one] : known_) Require(notices_.Waits(name) == one.Waits.has_value());
    for (const std::string& name : notices_.Waiting()) Require(known_[name].Waits && !known_[name].OnItsWay);
  }

 private:
  static std::uint32_t NumberOf(std::string_view text) {
    std::uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
  }
  Known* WithNumber(std::uint32_t number) {
    for (auto& [name, one] : known_)
      if (number != 0 && one.Number == number) return &one;
    return nullptr;
  }

  /// Each letter is an action.
  void Want(const std::string& subject, std::string_view actions) {
    Notice notice;
    notice.Subject = subject;
    notice.Text = actions;
    for (const char key : actions) notice.Actions.push_back({.Key = std::string(1, key), .Label = "label"});
    notices_.Want(notice);
    known_[subject].Waits = notice;
    known_[subject].Withdrawn = false;
  }

  void Send(const std::string& subject) {
    const auto sending = notices_.Send(subject);
    Known& one = known_[subject];
    Require(sending.has_value() == (one.Waits && !one.OnItsWay));
    if (!sending) return;
    Require(sending->Message == *one.Waits && sending->InPlaceOf == one.Number);
    one.Sent = *one.Waits;
    one.Waits.reset();
    one.OnItsWay = true;
  }

  void Answer(const std::string& subject, std::uint32_t number) {
    Known& one = known_[subject];
    // Each answer is one to a message.
    if (!one.OnItsWay) return;
    one.OnItsWay = false;
    const std::uint32_t closes = notices_.Answered(subject, number);
    Require(closes == (one.Withdrawn ? number : 0));
    one.Number = one.Withdrawn ? 0 : number;
    one.Withdrawn = false;
  }

  void Withdraw(const std::string& subject) {
    Known& one = known_[subject];
    const std::uint32_t closes = notices_.Withdraw(subject);
    Require(closes == (one.OnItsWay ? 0 : one.Number));
    one.Waits.reset();
    one.Withdrawn = one.OnItsWay;
    if (!one.OnItsWay) one.Number = 0;
  }

  void Choose(std::uint32_t number, const std::string& key) {
    Known* const one = WithNumber(number);
    const bool counts = one != nullptr && !one->OnItsWay &&
                        std::any_of(one->Sent.Actions.begin(), one->Sent.Actions.end(),
                                    [&key](const Notice::Action& action) { return action.Key == key; });
    const auto chosen = notices_.Choose(number, key);
    Require(chosen.has_value() == counts);
    if (!chosen) return;
    Require(chosen->Subject == one->Sent.Subject && chosen->Key == key && chosen->Closes == number);
    one->Number = 0;
  }

  ShownNotices notices_;
  std::map<std::string, Known> known_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Run run;
  for (const std::string& line : kestrune::base::Split(std::string(data, data + size), '\n')) run.Take(line);
  return 0;
}
