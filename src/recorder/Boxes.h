#pragma once

#include <functional>
#include <utility>

#include "platform/Dialogs.h"
#include "recorder/Door.h"

namespace kestrune::recorder {

/// The message boxes that the run itself shows. None of them stops it: the box is shown, the run goes on, and the
/// answer comes in at the door like any other wish.
class Boxes {
 public:
  using Answered = std::function<void(platform::MessageAnswer)>;

  /// Both must outlive the object, and the door must outlive the boxes.
  Boxes(platform::Dialogs& dialogs, Door& door) : dialogs_(dialogs), door_(door) {}

  /// `answered` is a step of the run: it must not wait for the user. A run that closes answers for him.
  void Show(
      const platform::Message& message, Answered answered = [](platform::MessageAnswer) {}) {
    dialogs_.Open(message, [&door = door_, answered = std::move(answered)](platform::MessageAnswer answer) {
      door.Ask([answered, answer] {
        answered(answer);
        return base::Result::Done();
      });
    });
  }

 private:
  platform::Dialogs& dialogs_;
  Door& door_;
};

}  // namespace kestrune::recorder
