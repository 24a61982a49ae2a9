#include "windows/SpokenCheck.h"

#include <QKeySequence>
#include <QRadioButton>

namespace kestrune::windows {
namespace {

/// The text as it is shown: "&" marks the key of the letter after it, and "&&" is one.
QString WithoutMarks(const QString& text) {
  QString shown;
  for (qsizetype at = 0; at < text.size(); ++at) {
    if (text[at] == QLatin1Char('&') && ++at == text.size()) break;
    shown += text[at];
  }
  return shown;
}

}  // namespace

SpokenCheck::SpokenCheck(QAbstractButton& button)
    : QAccessibleWidget(&button, qobject_cast<QRadioButton*>(&button) != nullptr ? QAccessible::RadioButton
                                                                                 : QAccessible::CheckBox),
      button_(button) {}

QString SpokenCheck::text(QAccessible::Text kind) const {
  if (kind == QAccessible::Name && button_.accessibleName().isEmpty()) return WithoutMarks(button_.text());
  if (kind == QAccessible::Accelerator)
    return QKeySequence::mnemonic(button_.text()).toString(QKeySequence::NativeText);
  return QAccessibleWidget::text(kind);
}

QAccessible::State SpokenCheck::state() const {
  QAccessible::State state = QAccessibleWidget::state();
  state.checkable = true;
  state.checked = button_.isChecked();
  return state;
}

QStringList SpokenCheck::actionNames() const {
  QStringList names = QAccessibleWidget::actionNames();
  if (button_.isEnabled()) names.prepend(toggleAction());
  return names;
}

void SpokenCheck::doAction(const QString& name) {
  if (name != toggleAction()) return QAccessibleWidget::doAction(name);
  QMetaObject::invokeMethod(&button_, "click", Qt::QueuedConnection);
}

}  // namespace kestrune::windows
