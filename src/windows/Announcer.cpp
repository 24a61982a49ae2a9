#include "windows/Announcer.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QWidget>

namespace kestrune::windows {
namespace {

/// Readers say the name of a notification when they learn that it shows, wherever the focus is.
class Notification final : public QAccessibleObject {
 public:
  explicit Notification(Announcer& announcer) : QAccessibleObject(&announcer), announcer_(announcer) {}

  [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Notification; }
  [[nodiscard]] QAccessible::State state() const override { return {}; }
  [[nodiscard]] QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? announcer_.Said() : QString();
  }
  [[nodiscard]] QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(&announcer_.Window());
  }
  [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
  [[nodiscard]] int childCount() const override { return 0; }
  [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }

 private:
  Announcer& announcer_;
};

QAccessibleInterface* Speak(const QString& /*className*/, QObject* object) {
  auto* announcer = dynamic_cast<Announcer*>(object);
  return announcer != nullptr ? new Notification(*announcer) : nullptr;
}

}  // namespace

Announcer::Announcer(QWidget& window) : QObject(&window), window_(window) {
  setObjectName(QStringLiteral("announcer"));
  static const bool installed = [] {
    QAccessible::installFactory(Speak);
    return true;
  }();
  static_cast<void>(installed);
}

void Announcer::Say(const QString& text) {
  said_ = text;
  if (!QAccessible::isActive()) return;
  QAccessibleEvent named(this, QAccessible::NameChanged);
  QAccessible::updateAccessibility(&named);
  QAccessibleEvent shown(this, QAccessible::ObjectShow);
  QAccessible::updateAccessibility(&shown);
}

}  // namespace kestrune::windows
