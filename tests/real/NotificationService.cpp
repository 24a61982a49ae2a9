// A desktop's notification service that shows nothing. It writes a line for each message, "TITLE|TEXT", and for each that is
// taken away, "gone". Whoever calls its method Click with the label of an action chooses that action of the last message.
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <cstdint>
#include <cstdio>

namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kObject = QStringLiteral("/org/freedesktop/Notifications");

class NotificationService final : public QDBusVirtualObject {
 public:
  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
    const QVariantList facts = message.arguments();
    QVariantList answer;
    if (message.member() == QLatin1String("GetCapabilities")) {
      answer << QStringList{QStringLiteral("actions"), QStringLiteral("body-markup")};
    } else if (message.member() == QLatin1String("Notify")) {
      actions_ = facts.value(5).toStringList();
      std::printf("%s|%s\n", qUtf8Printable(facts.value(3).toString()),
                  qUtf8Printable(facts.value(4).toString()));
      answer << (facts.value(1).toUInt() != 0 ? facts.value(1).toUInt() : ++id_);
    } else if (message.member() == QLatin1String("CloseNotification")) {
      std::printf("gone\n");
    } else if (message.member() == QLatin1String("Click")) {
      const auto label = actions_.indexOf(facts.value(0).toString());
      QDBusMessage signal = QDBusMessage::createSignal(kObject, kService, QStringLiteral("ActionInvoked"));
      signal << id_ << actions_.value(label - 1);
      connection.send(signal);
    }
    std::fflush(stdout);
    if (message.isReplyRequired()) connection.send(message.createReply(answer));
    return true;
  }

 private:
  std::uint32_t id_ = 0;
  QStringList actions_;
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  NotificationService service;
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.registerVirtualObject(kObject, &service) || !bus.registerService(kService)) return 1;
  std::printf("ready\n");
  std::fflush(stdout);
  return QCoreApplication::exec();
}
