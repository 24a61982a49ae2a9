#pragma once

#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <utility>

namespace kestrune::test {

/// Hands on the signals of a bus that it is connected to.
class NewsListener final : public QObject {
  Q_OBJECT

 public:
  explicit NewsListener(std::function<void(const QDBusMessage&)> take) : take_(std::move(take)) {}

 public slots:  // NOLINT(readability-redundant-access-specifiers): Qt's own keyword
  void Take(const QDBusMessage& news) { take_(news); }

 private:
  std::function<void(const QDBusMessage&)> take_;
};

}  // namespace kestrune::test
