#include "windows/UpDown.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <utility>

namespace kestrune::windows {

UpDown::UpDown(QLineEdit& buddy, std::function<void(int)> step, QWidget* parent)
    : QWidget(parent), step_(std::move(step)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  AddButton(Qt::UpArrow, 1);
  AddButton(Qt::DownArrow, -1);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setFixedHeight(buddy.sizeHint().height());
  buddy.installEventFilter(this);
}

void UpDown::AddButton(Qt::ArrowType arrow, int direction) {
  auto* button = new QToolButton(this);
  button->setArrowType(arrow);
  button->setAutoRepeat(true);
  button->setFocusPolicy(Qt::NoFocus);
  button->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
  button->setMinimumHeight(1);
  button->setAccessibleName(direction > 0 ? QStringLiteral("More") : QStringLiteral("Less"));
  connect(button, &QToolButton::clicked, this, [this, direction] { step_(direction); });
  layout()->addWidget(button);
}

bool UpDown::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && !isHidden()) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Up || key == Qt::Key_Down) {
      step_(key == Qt::Key_Up ? 1 : -1);
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

QHBoxLayout* WithArrows(QLineEdit& line, UpDown& arrows) {
  auto* row = new QHBoxLayout;
  row->setSpacing(1);
  row->addWidget(&line);
  row->addWidget(&arrows);
  row->addStretch();
  return row;
}

}  // namespace kestrune::windows
