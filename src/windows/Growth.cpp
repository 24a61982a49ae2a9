#include "windows/Growth.h"

#include <algorithm>
#include <utility>

namespace kestrune::windows {

void Growth::Add(QWidget& widget, double share) {
  parts_.push_back({.Widget = &widget, .Points = widget.font().pointSizeF(), .Share = share});
}

void Growth::Fit(QSize window, QSize usual) {
  const double factor = std::clamp(std::min(window.width() / static_cast<double>(usual.width()),
                                            window.height() / static_cast<double>(usual.height())),
                                   1.0, kMost);
  if (std::exchange(factor_, factor) == factor) return;
  for (const Part& part : parts_) {
    QFont font = part.Widget->font();
    font.setPointSizeF(part.Points * (1 + (factor - 1) * part.Share));
    part.Widget->setFont(font);
  }
}

}  // namespace kestrune::windows
