#include "windows/FaintTexts.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QGroupBox>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <cmath>

#include "windows/Contrast.h"
#include "windows/ElidedLabel.h"

namespace kestrune::test {
namespace {

using windows::Contrast;

double ContrastWithin(const QImage& picture, const QRect& place) {
  QHash<QRgb, int> colours;
  for (int y = place.top(); y <= place.bottom(); ++y)
    for (int x = place.left(); x <= place.right(); ++x) ++colours[picture.pixel(x, y)];
  QRgb ground = 0;
  int most = 0;
  for (auto colour = colours.cbegin(); colour != colours.cend(); ++colour) {
    if (colour.value() > most) ground = colour.key();
    most = std::max(most, colour.value());
  }
  double contrast = 1;
  for (auto colour = colours.cbegin(); colour != colours.cend(); ++colour)
    contrast = std::max(contrast, Contrast(QColor(ground), QColor(colour.key())));
  return contrast;
}

class Judge {
 public:
  Judge(const QWidget& window, const QImage& picture) : window_(window), picture_(picture) {}

  /// `place` in the widget's own coordinates.
  void Look(const QWidget& widget, QRect place, const QString& text) {
    // Its frame is no text.
    constexpr int kFrame = 3;
    place = place.adjusted(kFrame, kFrame, -kFrame, -kFrame);
    QRect seen = place & widget.visibleRegion().boundingRect();
    if (seen != place) return;  // scrolled away, in part at least
    const double scale = picture_.devicePixelRatio();
    seen.moveTopLeft(widget.mapTo(&window_, seen.topLeft()));
    const QRect pixels =
        QRect((QPointF(seen.topLeft()) * scale).toPoint(), (QSizeF(seen.size()) * scale).toSize()) &
        picture_.rect();
    if (text.trimmed().isEmpty() || pixels.width() < 4 || pixels.height() < 4) return;
    const double contrast = ContrastWithin(picture_, pixels);
    if (contrast < windows::kReadableContrast)
      faint_.append(
          QStringLiteral("%1 \"%2\": %3").arg(widget.objectName(), text.left(30)).arg(contrast, 0, 'f', 1));
  }

  void LookAtRows(const QAbstractItemView& view) {
    if (view.model() == nullptr) return;
    const int rows = std::min(view.model()->rowCount(view.rootIndex()), 40);
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < view.model()->columnCount(view.rootIndex()); ++column) {
        const QModelIndex cell = view.model()->index(row, column, view.rootIndex());
        if ((cell.flags() & Qt::ItemIsEnabled) == 0) continue;
        const QRect place = view.visualRect(cell) & view.viewport()->rect();
        if (place.height() > view.fontMetrics().height() / 2)
          Look(*view.viewport(), place, cell.data().toString());
      }
    }
  }

  [[nodiscard]] const QStringList& Faint() const { return faint_; }

 private:
  const QWidget& window_;
  const QImage& picture_;
  QStringList faint_;
};

QString TextOf(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  if (const auto* line = qobject_cast<const QLineEdit*>(&widget))
    return line->text() + line->placeholderText();
  if (const auto* list = qobject_cast<const QComboBox*>(&widget)) return list->currentText();
  return {};
}

}  // namespace

QStringList FaintTexts(const QWidget& window, const QImage& picture) {
  Judge judge(window, picture);
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisibleTo(&window) || !widget->isEnabled() || widget->window() != &window) continue;
    if (const auto* view = qobject_cast<const QAbstractItemView*>(widget)) judge.LookAtRows(*view);
    if (const auto* group = qobject_cast<const QGroupBox*>(widget))
      judge.Look(*group, QRect(0, 0, group->width(), group->fontMetrics().height()), group->title());
    const auto* label = dynamic_cast<const windows::ElidedLabel*>(widget);
    if (label == nullptr || !label->IsBlank()) judge.Look(*widget, widget->rect(), TextOf(*widget));
  }
  return judge.Faint();
}

}  // namespace kestrune::test
