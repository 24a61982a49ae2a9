#pragma once

#include <QPushButton>

namespace kestrune::windows {

/// A big button with a caption of several lines, each elided if it is too long. "&&" in the caption shows
/// "&".
class NowButtonFace final : public QPushButton {
 public:
  explicit NowButtonFace(QWidget* parent = nullptr);

  /// Green, or the normal button colour.
  void ShowTuned(bool tuned);
  [[nodiscard]] bool Tuned() const { return tuned_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool tuned_ = false;
};

}  // namespace kestrune::windows
