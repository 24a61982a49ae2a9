#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Notifications.h"

namespace kestrune::platform {

/// Which message of a subject the notification service was given, under which number it knows it, and which one waits: the
/// book of DesktopNotifications, without the bus. Numbers and names come from the service, that is from a stranger; 0 is no number.
///
/// 1. Of a subject one message is on its way at a time. Of those that come meanwhile only the latest is sent.
/// 2. A choice counts only under the number of a message that is shown, with an action that it has, and once.
class ShownNotices {
 public:
  /// What is to be sent.
  struct Sending {
    Notice Message;
    std::uint32_t InPlaceOf = 0;  ///< the number of the message that it replaces
  };
  /// An action that a user has chosen. The message is forgotten.
  struct Chosen {
    std::string Subject;
    std::string Key;
    std::uint32_t Closes = 0;  ///< the number of the message, which is to be taken away
  };

  /// A message is to be shown, in place of what waits.
  void Want(const Notice& notice);
  /// Subjects whose messages wait, but for those that have one on its way.
  [[nodiscard]] std::vector<std::string> Waiting() const;
  [[nodiscard]] bool Waits(std::string_view subject) const;
  /// The message that waits is on its way; nothing if there is none or another one is.
  [[nodiscard]] std::optional<Sending> Send(std::string_view subject);
  /// The service has answered the message that was on its way. Returns a number that is to be taken away, if it was withdrawn
  /// meanwhile.
  [[nodiscard]] std::uint32_t Answered(std::string_view subject, std::uint32_t number);
  /// Returns a number that is to be taken away now.
  [[nodiscard]] std::uint32_t Withdraw(std::string_view subject);
  /// What waits is out of date.
  void DropWaiting();

  /// The service has closed a message.
  void Closed(std::uint32_t number);
  /// The service says that an action was chosen.
  [[nodiscard]] std::optional<Chosen> Choose(std::uint32_t number, std::string_view key);
  /// Another service, which knows no message.
  void ForgetNumbers();

 private:
  struct Subject {
    std::uint32_t Number = 0;    // of the message that is shown
    Notice Sent;                 // the latest that the service was given
    std::optional<Notice> Next;  // waits for an answer
    bool OnItsWay = false;
    bool Withdrawn = false;  // asked for while a message was on its way
  };
  using Subjects = std::map<std::string, Subject, std::less<>>;

  [[nodiscard]] Subjects::iterator Find(std::uint32_t number);

  Subjects subjects_;
};

}  // namespace kestrune::platform
