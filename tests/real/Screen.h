#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "real/Process.h"

namespace kestrune::test {

/// A display of its own with a window manager, for a program that is worked by its keys, as a person without a
/// mouse would, and here and there by a click.
class Screen {
 public:
  Screen();

  /// False where a program that it needs is missing; then nothing else may be called.
  [[nodiscard]] bool Usable() const { return !name_.empty(); }
  /// The variables of a program that shows itself here.
  [[nodiscard]] std::map<std::string, std::string> Environment() const;

  /// Waits for a visible window whose title fits the expression; false if none comes.
  [[nodiscard]] bool WaitFor(const std::string& title) const;
  [[nodiscard]] bool WaitUntilGone(const std::string& title) const;
  [[nodiscard]] bool Shows(const std::string& title) const;
  /// Gives the window the focus and presses keys, such as "ctrl+F1", faster than the program lets time pass.
  void Press(const std::string& title, const std::vector<std::string>& keys) const;
  /// The same with the letters of a text.
  void Type(const std::string& title, const std::string& text) const;
  /// Clicks with the left button, so many times in a row, at a place in the window that counts from its upper
  /// left corner within the frame.
  void Click(const std::string& title, int x, int y, int times = 1) const;
  /// Drags what lies at that place in the window into the middle of the other one.
  void Drag(const std::string& title, int x, int y, const std::string& target) const;
  /// What a window shows at this moment, as bytes that only another picture of it can be compared with; empty on failure.
  [[nodiscard]] std::string Picture(const std::string& title) const;
  void Minimise(const std::string& title) const;
  /// As a task bar does, by a part of the title: it finds minimised windows too.
  void Activate(const std::string& part) const;
  /// The close box.
  void Close(const std::string& title) const;

 private:
  [[nodiscard]] Outcome Run(const std::string& program, std::vector<std::string> arguments) const;
  [[nodiscard]] std::string Find(const std::string& title) const;
  void Focus(const std::string& title) const;

  std::unique_ptr<Process> server_;
  std::unique_ptr<Process> manager_;
  std::string name_;
};

}  // namespace kestrune::test
