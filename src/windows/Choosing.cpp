#include "windows/Choosing.h"

#include <QEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <cstddef>

#include "windows/Binding.h"

namespace kestrune::windows {
namespace {

bool ShowsRows(const QComboBox& list, const presenters::ChoiceList& choices) {
  if (static_cast<std::size_t>(list.count()) != choices.Rows.size()) return false;
  for (int row = 0; row < list.count(); ++row) {
    if (list.itemText(row) != ToQt(choices.Rows[static_cast<std::size_t>(row)].Text)) return false;
  }
  return true;
}

/// Keeps the wheel from changing a list that the pointer happens to be over.
class WheelGuard final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus()) return false;
    event->ignore();
    return true;
  }
};

}  // namespace

void ElidedList::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionComboBox option;
  initStyleOption(&option);
  painter.drawComplexControl(QStyle::CC_ComboBox, option);
  const QRect room =
      style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
  option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideRight, room.width());
  painter.drawControl(QStyle::CE_ComboBoxLabel, option);
}

void ShowChoices(QComboBox& list, const presenters::ChoiceList& choices) {
  if (!ShowsRows(list, choices)) {
    const QSignalBlocker quiet(list);
    list.clear();
    for (const presenters::ChoiceRow& row : choices.Rows) list.addItem(ToQt(row.Text));
  }
  ShowIndex(list, choices.Row);
}

void Restrain(QComboBox& list, int characters) {
  list.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list.setMinimumContentsLength(characters);
  list.setFocusPolicy(Qt::StrongFocus);
  list.installEventFilter(new WheelGuard(&list));
}

void ShowPosition(QSlider& slider, int position) {
  if (slider.value() == position) return;
  const QSignalBlocker quiet(slider);
  slider.setValue(position);
  slider.update();
}

void OnMoved(QSlider& slider, const std::function<void(int)>& moved) {
  const auto tell = [&slider, moved] { moved(slider.sliderPosition()); };
  QObject::connect(&slider, &QSlider::valueChanged, &slider, tell);
  QObject::connect(&slider, &QSlider::actionTriggered, &slider, tell);
  QObject::connect(&slider, &QSlider::sliderReleased, &slider, tell);
}

void KeepRoom(QWidget& widget) {
  QSizePolicy policy = widget.sizePolicy();
  policy.setRetainSizeWhenHidden(true);
  widget.setSizePolicy(policy);
}

}  // namespace kestrune::windows
