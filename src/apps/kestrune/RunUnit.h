#pragma once

#include <functional>
#include <memory>
#include <string>

#include "apps/kestrune/Face.h"
#include "base/EventLoop.h"
#include "control/CommandLine.h"
#include "platform/Environment.h"
#include "platform/qt/QtEventLoop.h"

namespace kestrune::apps {

// The program's exit statuses.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kWrongUse = 2;

using MakeFace = std::function<std::unique_ptr<Face>(base::EventLoop&, const platform::Environment&)>;

/// Sets up the outside, loads a unit and runs until it has closed. The application object must exist.
/// Returns the exit status.
[[nodiscard]] int RunUnit(const control::CommandLine& line, const std::string& executable,
                          platform::QtEventLoop& loop, const MakeFace& makeFace);

/// One line on standard error.
void Say(const std::string& line);

}  // namespace kestrune::apps
