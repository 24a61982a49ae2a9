#pragma once

#include <QAbstractListModel>

#include "schedule/log/LogList.h"

namespace kestrune::windows {

/// The log's last lines as a list model. It observes the list until it is destroyed.
class LogLines final : public QAbstractListModel {
 public:
  /// The list must outlive the model.
  explicit LogLines(schedule::LogList& list, QObject* parent = nullptr);
  ~LogLines() override;
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

 private:
  void Hear(schedule::LogList::Change change);
  [[nodiscard]] int Held() const { return static_cast<int>(list_.Lines().size()); }

  schedule::LogList& list_;
  int rows_ = 0;  // as the views know them
  int gone_ = 0;  // removed from the top of the list, not yet reported to the views
};

}  // namespace kestrune::windows
