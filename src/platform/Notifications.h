#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune::platform {

/// A short message that the desktop shows over everything else for a moment.
struct Notice {
  enum class Weight : std::uint8_t {
    Light,   ///< need not catch anybody's eye
    Normal,  ///< goes by itself
    Heavy    ///< stays until somebody has seen it
  };
  struct Action {
    std::string Key;    ///< comes back when it is chosen; "default" is a click on the message itself
    std::string Label;  ///< as people read it

    bool operator==(const Action&) const = default;
  };

  std::string Subject;  ///< one subject has one message: a later one takes the place of the one before
  std::string Title;    ///< as plain as the text
  std::string Text;     ///< plain text in UTF-8 whatever it contains, of several lines perhaps
  std::vector<Action> Actions;
  Weight Urgency = Weight::Normal;

  bool operator==(const Notice&) const = default;
};

/// The desktop's notifications. The main thread calls; no call waits. Where there is no such service nothing happens.
class Notifications {
 public:
  virtual ~Notifications() = default;

  virtual void Show(const Notice& notice) = 0;
  /// Takes the message of a subject away, if it is still there.
  virtual void Withdraw(std::string_view subject) = 0;

  /// Who is informed that an action was chosen: on the main thread, from the loop. It is one that the subject's latest
  /// message has, and the message is gone then.
  void SetHandler(std::function<void(const std::string& subject, const std::string& key)> handler) {
    handler_ = std::move(handler);
  }

 protected:
  void Choose(const std::string& subject, const std::string& key) {
    if (handler_) handler_(subject, key);
  }

 private:
  std::function<void(const std::string&, const std::string&)> handler_;
};

}  // namespace kestrune::platform
