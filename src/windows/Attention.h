#pragma once

#include <QObject>
#include <chrono>

#include "base/EventLoop.h"

namespace kestrune::windows {

/// Whether somebody is at the program: it notices each key, click and move of the pointer in any of its windows. What
/// only pleases the eye may be shown less often while nobody is.
class Attention final : public QObject {
 public:
  /// So long after the last of these somebody still counts as there.
  static constexpr std::chrono::seconds kLasts{30};

  /// Somebody has just started the program. The loop must outlive the object.
  explicit Attention(const base::EventLoop& loop, QObject* parent = nullptr);

  [[nodiscard]] bool Paid() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  const base::EventLoop& loop_;
  std::chrono::milliseconds last_;
};

}  // namespace kestrune::windows
