#include "windows/SpokenLabel.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QKeyEvent>

#include "windows/ElidedLabel.h"

namespace kestrune::windows {
namespace {

class SpokenLabel final : public QAccessibleWidget {
 public:
  explicit SpokenLabel(ElidedLabel& label) : QAccessibleWidget(&label), label_(label) {}

  [[nodiscard]] QAccessible::Role role() const override {
    return label_.CanActivate() ? QAccessible::Button : QAccessible::StaticText;
  }
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    if (kind != QAccessible::Name) return QAccessibleWidget::text(kind);
    if (label_.Caption().isEmpty()) return label_.text();
    return label_.text().isEmpty() ? label_.Caption()
                                   : QStringLiteral("%1: %2").arg(label_.Caption(), label_.text());
  }
  [[nodiscard]] QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (label_.CanActivate()) names.prepend(pressAction());
    return names;
  }
  void doAction(const QString& name) override {
    if (name == pressAction()) {
      // As the key does, from the event loop: it may open a window that waits for an answer, and the reader must not.
      QCoreApplication::postEvent(&label_, new QKeyEvent(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier));
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

 private:
  ElidedLabel& label_;
};

QAccessibleInterface* Speak(const QString& /*className*/, QObject* object) {
  auto* label = dynamic_cast<ElidedLabel*>(object);
  return label != nullptr ? new SpokenLabel(*label) : nullptr;
}

}  // namespace

void SpeakElidedLabels() {
  static const bool installed = [] {
    QAccessible::installFactory(Speak);
    return true;
  }();
  static_cast<void>(installed);
}

}  // namespace kestrune::windows
