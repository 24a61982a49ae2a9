#include "presenters/NoticeBoard.h"

#include <utility>

#include <fmt/format.h>

namespace kestrune::presenters {
namespace {

/// A click on the message itself, by the contract.
constexpr const char* kItself = "default";

}  // namespace

NoticeBoard::NoticeBoard(platform::Notifications& notifications, Windows windows)
    : notifications_(notifications), windows_(std::move(windows)) {
  notifications_.SetHandler(
      [this](const std::string& subject, const std::string& key) { Choose(subject, key); });
}

NoticeBoard::~NoticeBoard() {
  notifications_.SetHandler({});
  for (const auto& [subject, offers] : offers_) notifications_.Withdraw(subject);
}

void NoticeBoard::Show(const Message& message) {
  if (windows_.InFront()) return;
  platform::Notice notice{.Subject = std::string(message.Subject),
                          .Title = message.Title,
                          .Text = message.Text,
                          .Actions = {{.Key = kItself, .Label = "Show Kestrune"}},
                          .Urgency = message.Urgency};
  auto& offers = offers_[notice.Subject];
  offers = {{kItself, windows_.Raise}};
  for (const Offer& offer : message.Offers) {
    const std::string key = fmt::format("offer-{}", ++keys_);
    notice.Actions.push_back({.Key = key, .Label = offer.Label});
    offers[key] = offer.Do;
  }
  notifications_.Show(notice);
}

void NoticeBoard::Withdraw(std::string_view subject) {
  const auto shown = offers_.find(subject);
  if (shown == offers_.end()) return;
  offers_.erase(shown);
  notifications_.Withdraw(subject);
}

void NoticeBoard::Follow() {
  if (offers_.empty() || !windows_.InFront()) return;
  for (const auto& [subject, offers] : offers_) notifications_.Withdraw(subject);
  offers_.clear();
}

void NoticeBoard::Choose(const std::string& subject, const std::string& key) {
  const auto shown = offers_.find(subject);
  if (shown == offers_.end() || !shown->second.contains(key)) return;
  // What it does may show another message.
  const std::function<void()> chosen = shown->second.at(key);
  offers_.erase(shown);
  chosen();
}

}  // namespace kestrune::presenters
