// Reads a program's windows as a screen reader does, from the accessibility bus of the session, and presses what it finds.
//
//   screen_reader tree              prints a line for each thing that can be read, but for the rows of lists:
//                                   DEPTH|ROLE|NAME|VALUE|STATES, the text of a field being its value
//   screen_reader press ROLE NAME   does the first action of the first such thing that shows and is enabled
//   screen_reader focus ROLE NAME   gives it the focus
//   screen_reader listen            prints "listening", and then what each notification says when it comes, until it is ended
//
// Exits with 1 if there is no such thing, and 2 if there is no program to read.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>
#include <cstdint>
#include <cstdio>
#include <functional>

#include "real/NewsListener.h"

namespace {

// Numbers of the accessibility interface.
constexpr int kEnabled = 8;
constexpr int kFocusable = 11;
constexpr int kFocused = 12;
constexpr int kChecked = 4;
constexpr int kShowing = 25;
constexpr int kDeepest = 40;

/// One thing of the tree: who has it, and its path there.
struct Thing {
  QString Service;
  QString Path;
};

class Reader {
 public:
  Reader() {
    const QDBusMessage answer = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                       QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
    bus_ = QDBusConnection::connectToBus(answer.arguments().value(0).toString(), QStringLiteral("reader"));
  }

  [[nodiscard]] QList<Thing> Programs() const {
    return Children(
        {QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/accessible/root")});
  }

  /// All of a program, parents first, until `visit` returns true; whether it did.
  bool Walk(const Thing& thing, int depth, const std::function<bool(const Thing&, int)>& visit) const {
    if (depth > kDeepest) return false;
    if (visit(thing, depth)) return true;
    // The rows of a list are many.
    static const QStringList kLists{QStringLiteral("table"), QStringLiteral("tree"), QStringLiteral("list")};
    if (kLists.contains(Role(thing))) return false;
    for (const Thing& child : Children(thing))
      if (Walk(child, depth + 1, visit)) return true;
    return false;
  }

  [[nodiscard]] QString Role(const Thing& thing) const {
    return Ask(thing, "Accessible", "GetRoleName").arguments().value(0).toString();
  }
  [[nodiscard]] QString Name(const Thing& thing) const {
    return Property(thing, "Accessible", "Name").toString();
  }
  [[nodiscard]] QString Value(const Thing& thing) const {
    const QDBusMessage text = Ask(thing, "Text", "GetText", {0, -1});
    if (text.type() == QDBusMessage::ReplyMessage && !text.arguments().value(0).toString().isEmpty())
      return text.arguments().value(0).toString();
    const QVariant value = Property(thing, "Value", "CurrentValue");
    return value.isValid() ? QString::number(value.toDouble()) : QString();
  }
  [[nodiscard]] bool Has(const Thing& thing, int state) const {
    const QDBusReply<QList<unsigned>> states = Ask(thing, "Accessible", "GetState");
    return states.isValid() && !states.value().isEmpty() &&
           (states.value().front() >> static_cast<unsigned>(state) & 1U) != 0;
  }
  [[nodiscard]] bool Press(const Thing& thing) const {
    return Ask(thing, "Action", "DoAction", {0}).arguments().value(0).toBool();
  }
  /// Asks for the news of what comes and goes, as programs send them only to those who want them.
  [[nodiscard]] bool Listen(kestrune::test::NewsListener& listener) {
    bus_.call(QDBusMessage::createMethodCall(
                  QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/registry"),
                  QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("RegisterEvent"))
              << QStringLiteral("object:state-changed:showing"));
    return bus_.connect(QString(), QString(), QStringLiteral("org.a11y.atspi.Event.Object"),
                        QStringLiteral("StateChanged"), &listener, SLOT(Take(QDBusMessage)));
  }
  [[nodiscard]] bool Focus(const Thing& thing) const {
    return Ask(thing, "Component", "GrabFocus").arguments().value(0).toBool();
  }

 private:
  [[nodiscard]] QDBusMessage Ask(const Thing& thing, const char* face, const char* method,
                                 const QVariantList& facts = {}) const {
    QDBusMessage question = QDBusMessage::createMethodCall(
        thing.Service, thing.Path, QStringLiteral("org.a11y.atspi.") + QLatin1String(face),
        QLatin1String(method));
    question.setArguments(facts);
    return bus_.call(question);
  }
  [[nodiscard]] QVariant Property(const Thing& thing, const char* face, const char* name) const {
    QDBusMessage question = QDBusMessage::createMethodCall(
        thing.Service, thing.Path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question << QStringLiteral("org.a11y.atspi.") + QLatin1String(face) << QLatin1String(name);
    return bus_.call(question).arguments().value(0).value<QDBusVariant>().variant();
  }
  [[nodiscard]] QList<Thing> Children(const Thing& thing) const {
    QList<Thing> children;
    const QDBusMessage answer = Ask(thing, "Accessible", "GetChildren");
    if (answer.type() != QDBusMessage::ReplyMessage) return children;
    const auto list = answer.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
      Thing child;
      QDBusObjectPath path;
      list.beginStructure();
      list >> child.Service >> path;
      list.endStructure();
      child.Path = path.path();
      children.append(child);
    }
    list.endArray();
    return children;
  }

  QDBusConnection bus_{QString()};
};

QString OneLine(QString text) {
  return text.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('|'), QLatin1Char('/'));
}

void Print(const Reader& reader, const Thing& thing, int depth) {
  QStringList states;
  for (const auto& [state, word] :
       std::initializer_list<std::pair<int, const char*>>{{kShowing, "showing"},
                                                          {kEnabled, "enabled"},
                                                          {kFocusable, "focusable"},
                                                          {kFocused, "focused"},
                                                          {kChecked, "checked"}})
    if (reader.Has(thing, state)) states.append(QLatin1String(word));
  std::printf("%d|%s|%s|%s|%s\n", depth, qUtf8Printable(reader.Role(thing)),
              qUtf8Printable(OneLine(reader.Name(thing))), qUtf8Printable(OneLine(reader.Value(thing))),
              qUtf8Printable(states.join(QLatin1Char(' '))));
}

/// Prints what the thing says, if it is a notification that has come.
void PrintNews(const Reader& reader, const QDBusMessage& news) {
  const QVariantList facts = news.arguments();
  if (facts.value(0).toString() != QLatin1String("showing") || facts.value(1).toInt() != 1) return;
  const Thing thing{news.service(), news.path()};
  if (reader.Role(thing) != QLatin1String("notification")) return;
  std::printf("%s\n", qUtf8Printable(OneLine(reader.Name(thing))));
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList words = QCoreApplication::arguments();
  Reader reader;
  if (words.value(1) == QLatin1String("listen")) {
    kestrune::test::NewsListener listener([&reader](const QDBusMessage& news) { PrintNews(reader, news); });
    if (!reader.Listen(listener)) return 2;
    std::puts("listening");
    std::fflush(stdout);
    return QCoreApplication::exec();
  }
  const QList<Thing> programs = reader.Programs();
  if (programs.isEmpty()) return 2;
  if (words.value(1) == QLatin1String("tree")) {
    for (const Thing& program : programs)
      reader.Walk(program, 0, [&](const Thing& thing, int depth) {
        Print(reader, thing, depth);
        return false;
      });
    return 0;
  }
  const bool press = words.value(1) == QLatin1String("press");
  bool done = false;
  for (const Thing& program : programs) {
    done = done || reader.Walk(program, 0, [&](const Thing& thing, int) {
      return reader.Role(thing) == words.value(2) && reader.Name(thing) == words.value(3) &&
             reader.Has(thing, kShowing) && reader.Has(thing, kEnabled) &&
             (press ? reader.Press(thing) : reader.Focus(thing));
    });
  }
  return done ? 0 : 1;
}
