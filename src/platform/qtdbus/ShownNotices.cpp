#include "platform/qtdbus/ShownNotices.h"

#include <algorithm>
#include <utility>

namespace kestrune::platform {

void ShownNotices::Want(const Notice& notice) {
  Subject& subject = subjects_[notice.Subject];
  subject.Next = notice;
  subject.Withdrawn = false;
}

std::vector<std::string> ShownNotices::Waiting() const {
  std::vector<std::string> names;
  for (const auto& [name, subject] : subjects_)
    if (subject.Next && !subject.OnItsWay) names.push_back(name);
  return names;
}

bool ShownNotices::Waits(std::string_view subject) const {
  const auto found = subjects_.find(subject);
  return found != subjects_.end() && found->second.Next;
}

std::optional<ShownNotices::Sending> ShownNotices::Send(std::string_view subject) {
  const auto found = subjects_.find(subject);
  if (found == subjects_.end() || found->second.OnItsWay || !found->second.Next) return std::nullopt;
  Subject& one = found->second;
  one.Sent = std::move(*one.Next);
  one.Next.reset();
  one.OnItsWay = true;
  return Sending{.Message = one.Sent, .InPlaceOf = one.Number};
}

std::uint32_t ShownNotices::Answered(std::string_view subject, std::uint32_t number) {
  const auto found = subjects_.find(subject);
  if (found == subjects_.end()) return 0;
  Subject& one = found->second;
  one.OnItsWay = false;
  one.Number = number;
  return std::exchange(one.Withdrawn, false) ? std::exchange(one.Number, 0U) : 0;
}

std::uint32_t ShownNotices::Withdraw(std::string_view subject) {
  const auto found = subjects_.find(subject);
  if (found == subjects_.end()) return 0;
  Subject& one = found->second;
  one.Next.reset();
  one.Withdrawn = one.OnItsWay;
  return one.OnItsWay ? 0 : std::exchange(one.Number, 0U);
}

void ShownNotices::DropWaiting() {
  for (auto& [name, subject] : subjects_) subject.Next.reset();
}

void ShownNotices::Closed(std::uint32_t number) {
  const auto found = Find(number);
  if (found != subjects_.end()) found->second.Number = 0;
}

std::optional<ShownNotices::Chosen> ShownNotices::Choose(std::uint32_t number, std::string_view key) {
  const auto found = Find(number);
  // While a later message is on its way, nobody can know which of the two was meant.
  if (found == subjects_.end() || found->second.OnItsWay) return std::nullopt;
  Subject& one = found->second;
  const bool offered = std::any_of(one.Sent.Actions.begin(), one.Sent.Actions.end(),
                                   [key](const Notice::Action& action) { return action.Key == key; });
  if (!offered) return std::nullopt;
  return Chosen{.Subject = found->first, .Key = std::string(key), .Closes = std::exchange(one.Number, 0U)};
}

void ShownNotices::ForgetNumbers() {
  for (auto& [name, subject] : subjects_) subject.Number = 0;
}

ShownNotices::Subjects::iterator ShownNotices::Find(std::uint32_t number) {
  return std::find_if(subjects_.begin(), subjects_.end(),
                      [number](const auto& one) { return number != 0 && one.second.Number == number; });
}

}  // namespace kestrune::platform
