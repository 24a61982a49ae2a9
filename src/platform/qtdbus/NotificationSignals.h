#pragma once

#include <QDBusMessage>
#include <QObject>
#include <functional>
#include <utility>

namespace kestrune::platform {

/// Hears the signals of a service on the message bus, whatever their arguments are.
class NotificationSignals final : public QObject {
  Q_OBJECT

 public:
  explicit NotificationSignals(std::function<void(const QDBusMessage& signal)> heard)
      : heard_(std::move(heard)) {}

 public Q_SLOTS:
  void Take(const QDBusMessage& signal) { heard_(signal); }

 private:
  const std::function<void(const QDBusMessage& signal)> heard_;
};

}  // namespace kestrune::platform
