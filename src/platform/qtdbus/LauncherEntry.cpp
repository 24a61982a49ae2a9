#include "platform/qtdbus/LauncherEntry.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QVariantMap>
#include <utility>

namespace kestrune::platform {
namespace {

/// By the name of its menu entry a launcher knows which icon is meant.
const QString kProgram = QStringLiteral("application://kestrune.desktop");

}  // namespace

LauncherEntry::LauncherEntry(QDBusConnection bus) : bus_(std::move(bus)) {}

LauncherEntry::~LauncherEntry() {
  Show(0);
}

void LauncherEntry::Show(int count) {
  if (std::exchange(shown_, count) == count || !bus_.isConnected()) return;
  // Each sender has an object of its own, whose last part is a number.
  const QString object =
      QStringLiteral("/com/canonical/unity/launcherentry/%1").arg(QCoreApplication::applicationPid());
  QDBusMessage signal = QDBusMessage::createSignal(
      object, QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
  signal << kProgram
         << QVariantMap{{QStringLiteral("count"), QVariant::fromValue(qlonglong{count})},
                        {QStringLiteral("count-visible"), count > 0}};
  bus_.send(signal);
}

}  // namespace kestrune::platform
