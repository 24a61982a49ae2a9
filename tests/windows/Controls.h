#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <stdexcept>
#include <string>

#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>
#include <gtest/gtest.h>

namespace kestrune::test {

/// The control of this name; the test fails, and ends, without it.
template <typename Control>
Control& Find(QWidget& window, const char* name) {
  auto* control = window.findChild<Control*>(QLatin1String(name));
  if (control == nullptr) throw std::runtime_error(std::string("no control ") + name);
  return *control;
}

inline QStringList RowsOf(const QComboBox& list) {
  QStringList rows;
  for (int row = 0; row < list.count(); ++row) rows.append(list.itemText(row));
  return rows;
}

/// Chooses a row as the user does, by the keyboard.
inline void ChooseRow(QComboBox& list, int row) {
  QTest::keyClick(&list, Qt::Key_Home);
  for (int i = 0; i < row; ++i) QTest::keyClick(&list, Qt::Key_Down);
  EXPECT_EQ(list.currentIndex(), row);
}

inline void Press(QWidget& window, const char* name) {
  Find<QAbstractButton>(window, name).click();
}

/// Does what the window system does when the user clicks the close box; returns true if the window agreed.
inline bool ClickCloseBox(QWidget& window) {
  QCloseEvent event;
  QSpontaneKeyEvent::setSpontaneous(&event);
  // sendEvent would clear the mark that distinguishes the window system's events from the program's.
  QCoreApplication::instance()->notify(&window, &event);
  return event.isAccepted();
}

/// Whether a label of the window has this text.
inline bool HasLabel(const QWidget& window, const char* caption) {
  for (const QLabel* label : window.findChildren<QLabel*>()) {
    if (label->text() == QLatin1String(caption)) return true;
  }
  return false;
}

}  // namespace kestrune::test
