#pragma once

#include <string>
#include <vector>

#include "platform/Autostart.h"

namespace kestrune::platform {

/// An entry in the folder "autostart" of the user's configuration folder, which every desktop reads. An entry counts as
/// this program's own if it bears its mark. Desktops let a user switch an entry off without removing it; such a one
/// starts nothing, nor does one whose program is gone.
class XdgAutostart final : public Autostart {
 public:
  struct Start {
    std::string Configuration;       ///< the user's configuration folder
    std::string Name;                ///< of the entry, without an ending: no other start has it
    std::string Program;             ///< its full path
    std::vector<std::string> Words;  ///< the program's arguments
  };

  explicit XdgAutostart(Start start) : start_(std::move(start)) {}

  [[nodiscard]] AutostartState Read() const override;
  [[nodiscard]] base::Result Enable() override;
  [[nodiscard]] base::Result Disable() override;
  [[nodiscard]] std::string File() const override;

 private:
  Start start_;
};

/// The name of the entry of a unit ("" for the one that is alone) in a profile (its full path; "" for the user's own
/// places), such as "kestrune-2-1f0ac239".
[[nodiscard]] std::string AutostartName(const std::string& unit, const std::string& profile);

}  // namespace kestrune::platform
