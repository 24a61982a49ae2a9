#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Notifications.h"

namespace kestrune::presenters {

/// The messages of a unit on the desktop, one a subject, and what their buttons do. While a window of the program is in
/// front nothing is shown. A click on a message itself brings the main window to the front.
class NoticeBoard {
 public:
  /// The windows, as far as messages have to do with them.
  struct Windows {
    std::function<bool()> InFront;  ///< whether a person works with one of them
    std::function<void()> Raise;    ///< brings the main window to the front
  };
  struct Offer {
    std::string Label;
    std::function<void()> Do;
  };
  struct Message {
    std::string_view Subject;
    std::string Title;
    std::string Text;
    std::vector<Offer> Offers = {};
    platform::Notice::Weight Urgency = platform::Notice::Weight::Normal;
  };

  /// The notifications must outlive the object.
  NoticeBoard(platform::Notifications& notifications, Windows windows);
  /// Takes everything away: what the messages offer could not be done any more.
  ~NoticeBoard();
  NoticeBoard(const NoticeBoard&) = delete;
  NoticeBoard& operator=(const NoticeBoard&) = delete;

  /// In the place of the subject's message before.
  void Show(const Message& message);
  void Withdraw(std::string_view subject);
  /// To be called often: once a window is in front the messages have done their duty, and go.
  void Follow();

 private:
  void Choose(const std::string& subject, const std::string& key);

  platform::Notifications& notifications_;
  const Windows windows_;
  /// What the keys of each message that is shown stand for. No key comes twice, so that a click on a message that has
  /// just given way to another means nothing.
  std::map<std::string, std::map<std::string, std::function<void()>>, std::less<>> offers_;
  std::int64_t keys_ = 0;
};

}  // namespace kestrune::presenters
