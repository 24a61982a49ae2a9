#include "platform/qtdbus/DesktopNotifications.h"

#include <QDBusPendingReply>
#include <QUrl>
#include <QVariantMap>
#include <algorithm>
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
  Subject& subject = subjects_[notice.Subject];
  subject.Next = notice;
  subject.Withdrawn = false;
  if (!abilities_) return AskWhatItCan();
  Send(notice.Subject, subject);
}

void DesktopNotifications::Withdraw(std::string_view name) {
  const auto found = subjects_.find(name);
  if (found == subjects_.end()) return;
  Subject& subject = found->second;
  subject.Next.reset();
  subject.Withdrawn = subject.Asked != nullptr;
  Close(subject);
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
    for (auto& [name, subject] : subjects_) subject.Next.reset();
    return;
  }
  const QVariant list = answer.arguments().value(0);
  abilities_ = answer.signature() == QLatin1String("as") ? list.toStringList() : QStringList();
  for (auto& [name, subject] : subjects_) Send(name, subject);
}

void DesktopNotifications::Send(const std::string& name, Subject& subject) {
  if (subject.Asked || !subject.Next) return;
  subject.Sent = std::move(*subject.Next);
  subject.Next.reset();
  const Notice& notice = subject.Sent;
  QStringList actions;
  if (Can("actions")) {
    for (const Notice::Action& action : notice.Actions) actions << ToQt(action.Key) << ToQt(action.Label);
  }
  const QString text = ToQt(notice.Text);
  const QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue(LevelOf(notice.Urgency))},
                          {QStringLiteral("desktop-entry"), QStringLiteral("kestrune")}};
  QDBusMessage call = Call("Notify");
  call << ToQt(identity_.Name) << subject.Id << IconText(identity_.Icon) << ToQt(notice.Title)
       << (Can("body-markup") ? text.toHtmlEscaped() : text) << actions << hints << kItsOwnTime;
  subject.Asked = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(call));
  QObject::connect(subject.Asked.get(), &QDBusPendingCallWatcher::finished, subject.Asked.get(),
                   [this, name] { TakeId(name); });
}

void DesktopNotifications::TakeId(const std::string& name) {
  Subject& subject = subjects_[name];
  const QDBusMessage answer = Taken(subject.Asked);
  subject.Id = answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("u")
                   ? answer.arguments().constFirst().toUInt()
                   : 0;
  if (std::exchange(subject.Withdrawn, false)) Close(subject);
  if (!subject.Next) return;
  if (!abilities_) return AskWhatItCan();
  Send(name, subject);
}

void DesktopNotifications::Close(Subject& subject) {
  if (subject.Id == 0 || subject.Asked) return;
  QDBusMessage call = Call("CloseNotification");
  call << std::exchange(subject.Id, 0U);
  // What it says about it does not matter, and it is not to be started for this.
  call.setAutoStartService(false);
  bus_.send(call);
}

void DesktopNotifications::Heard(const QDBusMessage& signal) {
  const bool closed = signal.member() == QLatin1String("NotificationClosed");
  if (signal.signature() != QLatin1String(closed ? "uu" : "us")) return;
  const QVariantList facts = signal.arguments();
  const std::uint32_t id = facts[0].toUInt();
  const auto found = std::find_if(subjects_.begin(), subjects_.end(),
                                  [id](const auto& one) { return id != 0 && one.second.Id == id; });
  if (found == subjects_.end()) return;
  const std::string name = found->first;
  Subject& subject = found->second;
  if (closed) {
    subject.Id = 0;
    return;
  }
  const std::string key = facts[1].toString().toStdString();
  // While a later message is on its way, nobody can know which of the two was meant.
  const bool offered =
      !subject.Asked && std::any_of(subject.Sent.Actions.begin(), subject.Sent.Actions.end(),
                                    [&key](const Notice::Action& action) { return action.Key == key; });
  if (!offered) return;
  // Services take it away by themselves, but some of them do not.
  Close(subject);
  Choose(name, key);
}

void DesktopNotifications::Forget() {
  abilities_.reset();
  for (auto& [name, subject] : subjects_) subject.Id = 0;
}

bool DesktopNotifications::Can(const char* ability) const {
  return abilities_ && abilities_->contains(QLatin1String(ability));
}

}  // namespace kestrune::platform
