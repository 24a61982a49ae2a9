#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "schedule/lists/Restrictions.h"

namespace kestrune::presenters {

/// The quick addition: after one question the artist or title on show becomes an entry of a Grab or Kill list.
class GrabKill {
 public:
  enum class Field { Artist, Song };

  /// The lists must outlive the object.
  explicit GrabKill(schedule::Restrictions& restrictions) : restrictions_(restrictions) {}

  /// `show` shows the question's window and returns when it is closed. Without it the answer is to add nothing.
  void SetWindow(std::function<void()> show) { show_ = std::move(show); }

  /// A double click on a field. The text is a label's caption: a doubled ampersand in it stands for one. As long as
  /// the entry cannot be written, the question comes again, until the user cancels it.
  void DblClick(Field field, std::string_view caption);

  /// Adds a text whose list is known already. If the entry cannot be written, the question comes, as after a double click.
  void Add(Field field, bool kill, std::string_view text);

  // What the window shows and answers.
  [[nodiscard]] const std::string& lblQuestion() const { return lblQuestion_; }
  /// The answer: 0 neither, 1 the Grab list, 2 the Kill list.
  void cmdResult(std::int16_t index) { grabMode_ = index; }
  [[nodiscard]] std::int16_t GrabMode() const { return grabMode_; }

 private:
  [[nodiscard]] static schedule::RestrictList ListOf(Field field, bool kill);
  [[nodiscard]] bool Write(Field field, bool kill, std::string_view text);

  schedule::Restrictions& restrictions_;
  std::function<void()> show_;
  std::string lblQuestion_;
  std::int16_t grabMode_ = 0;
};

}  // namespace kestrune::presenters
