#include "platform/qtdbus/DesktopNotifications.h"

#include <QDBusPendingReply>
#include <QUrl>
#include <QVariantMap>
#include <utility>

namespace kestrune::platform {
namespace {

const QString kService = QStringLiteral("org.freedesktop.Notifications");
const QString kObject = QStringLiteral("/org/freedesktop/Notifications");

/// The service's own choice of how long it shows a message.
constexpr int kItsOwnTime = -1;

QDBusMessage Call(const char* method) {
  return QDBusMessage::createMethodCall(kService, kObject, kService, QString::fromLatin1(method));
}

/// A NUL would end a text of the bus before its time.
QString ToQt(const std::string& text) {
  return QString::fromStdString(text).replace(QChar(0), QLatin1Char(' '));
}

/// As the service takes it: a name of the theme or an address.
QString IconText(const std::string& icon) {
  const QString text = ToQt(icon);
  return text.startsWith(QLatin1Char('/')) ? QUrl::fromLocalFile(text).toString(QUrl::FullyEncoded) : text;
}

/// Hands the answer over to the event loop for deletion: it is its watcher that calls.
QDBusMessage Taken(std::unique_ptr<QDBusPendingCallWatcher>& watcher) {
  QDBusPendingCallWatcher* const done = watcher.release();
  done->deleteLater();
  return done->reply();
}

/// The service's levels of urgency.
unsigned char LevelOf(Notice::Weight weight) {
  switch (weight) {
    case Notice::Weight::Light:
      return 0;
    case Notice::Weight::Normal:
      return 1;
    case Notice::Weight::Heavy:
      return 2;
  }
  return 1;
}

}  // namespace

DesktopNotifications::DesktopNotifications(Identity identity, QDBusConnection bus)
    : identity_(std::move(identity)),
      bus_(std::move(bus)),
      owner_(kService, bus_, QDBusServiceWatcher::WatchForOwnerChange),
      signals_([this](const QDBusMessage& signal) { Heard(signal); }) {
  if (!bus_.isConnected()) return;
  QObject::connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, &owner_, [this] { Forget(); });
  for (const char* name : {"ActionInvoked", "NotificationClosed"}) {
    bus_.connect(kService, kObject, kService, QString::fromLatin1(name), &signals_, SLOT(Take(QDBusMessage)));
  }
}

DesktopNotifications::~DesktopNotifications() = default;

void DesktopNotifications::Show(const Notice& notice) {
  if (!bus_.isConnected()) return;
  notices_.Want(notice);
  if (!abilities_) return AskWhatItCan();
  Send(notice.Subject);
}

void DesktopNotifications::Withdraw(std::string_view subject) {
  Close(notices_.Withdraw(subject));
}

void DesktopNotifications::AskWhatItCan() {
  if (asked_) return;
  asked_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(Call("GetCapabilities")));
  QObject::connect(asked_.get(), &QDBusPendingCallWatcher::finished, asked_.get(),
                   [this] { TakeWhatItCan(); });
}

void DesktopNotifications::TakeWhatItCan() {
  const QDBusMessage answer = Taken(asked_);
  // Without a service, or with one that does not answer, what waits is out of date; the next message asks again.
  if (answer.type() != QDBusMessage::ReplyMessage) {
    notices_.DropWaiting();
    return;
  }
  const QVariant list = answer.arguments().value(0);
  abilities_ = answer.signature() == QLatin1String("as") ? list.toStringList() : QStringList();
  for (const std::string& subject : notices_.Waiting()) Send(subject);
}

void DesktopNotifications::Send(const std::string& subject) {
  const std::optional<ShownNotices::Sending> sending = notices_.Send(subject);
  if (!sending) return;
  const Notice& notice = sending->Message;
  QStringList actions;
  if (Can("actions")) {
    for (const Notice::Action& action : notice.Actions) actions << ToQt(action.Key) << ToQt(action.Label);
  }
  const QString text = ToQt(notice.Text);
  const QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue(LevelOf(notice.Urgency))},
                          {QStringLiteral("desktop-entry"), QStringLiteral("kestrune")}};
  QDBusMessage call = Call("Notify");
  call << ToQt(identity_.Name) << sending->InPlaceOf << IconText(identity_.Icon) << ToQt(notice.Title)
       << (Can("body-markup") ? text.toHtmlEscaped() : text) << actions << hints << kItsOwnTime;
  auto& watcher = sent_[subject];
  watcher = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(call));
  QObject::connect(watcher.get(), &QDBusPendingCallWatcher::finished, watcher.get(),
                   [this, subject] { TakeNumber(subject); });
}

void DesktopNotifications::TakeNumber(const std::string& subject) {
  const QDBusMessage answer = Taken(sent_[subject]);
  const bool numbered =
      answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("u");
  Close(notices_.Answered(subject, numbered ? answer.arguments().constFirst().toUInt() : 0));
  if (!notices_.Waits(subject)) return;
  if (!abilities_) return AskWhatItCan();
  Send(subject);
}

void DesktopNotifications::Close(std::uint32_t number) {
  if (number == 0) return;
  QDBusMessage call = Call("CloseNotification");
  call << number;
  // What it says about it does not matter, and it is not to be started for this.
  call.setAutoStartService(false);
  bus_.send(call);
}

void DesktopNotifications::Heard(const QDBusMessage& signal) {
  const bool closed = signal.member() == QLatin1String("NotificationClosed");
  if (signal.signature() != QLatin1String(closed ? "uu" : "us")) return;
  const QVariantList facts = signal.arguments();
  const std::uint32_t number = facts[0].toUInt();
  if (closed) return notices_.Closed(number);
  const auto chosen = notices_.Choose(number, facts[1].toString().toStdString());
  if (!chosen) return;
  // Services take it away by themselves, but some of them do not.
  Close(chosen->Closes);
  Choose(chosen->Subject, chosen->Key);
}

void DesktopNotifications::Forget() {
  abilities_.reset();
  notices_.ForgetNumbers();
}

bool DesktopNotifications::Can(const char* ability) const {
  return abilities_ && abilities_->contains(QLatin1String(ability));
}

}  // namespace kestrune::platform
