#include "windows/SpokenWindow.h"

#include <QAccessibleWidget>

#include "windows/AudioDisplay.h"
#include "windows/SpokenCheck.h"

namespace kestrune::windows {
namespace {

QAccessibleInterface* Speak(const QString& className, QObject* object) {
  if (className == QLatin1String("QCheckBox") || className == QLatin1String("QRadioButton")) {
    auto* button = qobject_cast<QAbstractButton*>(object);
    return button != nullptr ? new SpokenCheck(*button) : nullptr;
  }
  if (className != QLatin1String("QWidget")) return nullptr;
  auto* widget = qobject_cast<QWidget*>(object);
  if (widget == nullptr) return nullptr;
  if (dynamic_cast<AudioDisplay*>(widget) != nullptr)
    return new QAccessibleWidget(widget, QAccessible::Graphic);
  return widget->isWindow() ? new QAccessibleWidget(widget, QAccessible::Window) : nullptr;
}

}  // namespace

void SpeakWindows() {
  static const bool installed = [] {
    QAccessible::installFactory(Speak);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace kestrune::windows
