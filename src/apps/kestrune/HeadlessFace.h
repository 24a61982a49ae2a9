#pragma once

#include <string_view>

#include "apps/kestrune/Face.h"
#include "platform/posix/ConsoleDialogs.h"

namespace kestrune::apps {

/// Without windows: messages go to standard error and are answered with what changes least.
class HeadlessFace final : public Face {
 public:
  explicit HeadlessFace(bool agreementAccepted);

  [[nodiscard]] platform::Dialogs& Dialogs() override { return dialogs_; }
  [[nodiscard]] platform::Sounds& Sounds() override { return sounds_; }
  [[nodiscard]] recorder::Windows& Windows() override { return windows_; }

 private:
  /// There is nobody to hear it.
  class Silence final : public platform::Sounds {
   public:
    void Play(std::string_view /*name*/) override {}
  };

  platform::ConsoleDialogs dialogs_;
  Silence sounds_;
  recorder::Windows windows_;
};

}  // namespace kestrune::apps
