#pragma once

#include <QAbstractListModel>

#include "schedule/log/LogList.h"

namespace kestrune::windows {

/// The log's last lines as a list model. It listens to the list for as long as it lives.
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
  int rows_ = 0;  // as the views know it
  int gone_ = 0;  // taken from the top of the list, of which the views have not heard yet
};

}  // namespace kestrune::windows
