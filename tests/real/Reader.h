#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/posix/TemporaryFolder.h"
#include "real/Process.h"
#include "real/Screen.h"
#include "support/PrivateBus.h"

namespace kestrune::test {

/// A screen reader on a screen, with the accessibility bus that a desktop has. It knows windows by what they say of
/// themselves, and nothing of where they stand.
class Reader {
 public:
  /// A thing as it is read.
  struct Thing {
    int Depth = 0;
    std::string Role;
    std::string Name;
    std::string Value;
    std::string States;  ///< words: showing, enabled, focusable, focused, checked

    [[nodiscard]] bool Is(const char* state) const { return States.find(state) != std::string::npos; }
  };

  /// The screen must outlive the reader.
  explicit Reader(const Screen& screen);

  /// False where a program that it needs is missing; then nothing else may be called.
  [[nodiscard]] bool Usable() const { return launcher_ != nullptr; }
  /// The variables of a program that can be read.
  [[nodiscard]] std::map<std::string, std::string> Environment() const;

  /// All that the running programs say, parents first.
  [[nodiscard]] std::vector<Thing> Read() const;
  /// Waits for a thing that shows; false if none comes.
  [[nodiscard]] bool WaitFor(const std::string& role, const std::string& name) const;
  /// Waits for one that shows and is enabled, and presses it; false if it did not take that.
  [[nodiscard]] bool Press(const std::string& role, const std::string& name) const;
  /// Begins to take down what programs say by themselves.
  void Listen();
  /// Waits until a program has said this by itself, alone or with more, since then; false if none does.
  [[nodiscard]] bool Heard(const std::string& text) const;

 private:
  [[nodiscard]] Outcome Run(std::vector<std::string> words) const;

  const Screen& screen_;
  TemporaryFolder folder_;
  std::unique_ptr<PrivateBus> bus_;
  std::unique_ptr<Process> launcher_;
  std::unique_ptr<Process> listener_;
};

}  // namespace kestrune::test
