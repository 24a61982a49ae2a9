#pragma once

#include <QFont>
#include <QSize>
#include <QWidget>
#include <vector>

namespace kestrune::windows {

/// How the letters of some widgets grow with their window.
class Growth {
 public:
  static constexpr double kMost = 3;

  /// The widget has its present letters at the usual size. They grow by `share` of what the window grows by: not at all at
  /// 0, as it does at 1.
  void Add(QWidget& widget, double share);
  /// Gives all of them the letters for a window of this size that has `usual` size otherwise: as large as the scarcer of
  /// width and height allows, up to kMost times; never smaller than usual.
  void Fit(QSize window, QSize usual);

 private:
  struct Part {
    QWidget* Widget;
    double Points;
    double Share;
  };
  std::vector<Part> parts_;
  double factor_ = 1;
};

}  // namespace kestrune::windows
