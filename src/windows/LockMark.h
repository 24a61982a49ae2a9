#pragma once

#include <QWidget>

namespace kestrune::windows {

/// A padlock and "Locked while recording", for where a click on a channel would be refused. The tip says the whole sentence.
class LockMark final : public QWidget {
 public:
  explicit LockMark(QWidget* parent = nullptr);
};

}  // namespace kestrune::windows
