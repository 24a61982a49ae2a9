#pragma once

#include <QString>
#include <string>
#include <string_view>

class QAbstractButton;
class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QWidget;

/// How a window shows a record. Each call touches its widget only if what it shows differs, and then without
/// its signals, so that showing a record never looks like something that the user did.
namespace kestrune::windows {

[[nodiscard]] QString ToQt(std::string_view utf8);
[[nodiscard]] std::string FromQt(const QString& text);

/// One "&" for each doubled one: what a caption of a record says.
[[nodiscard]] std::string Undoubled(std::string_view caption);
/// A tip that shows a stranger's text letter by letter, also where it looks like markup.
[[nodiscard]] QString PlainTip(const QString& text);

void ShowText(QLabel& label, std::string_view text);
void ShowText(QLineEdit& line, std::string_view text);
void ShowText(QAbstractButton& button, std::string_view text);
void ShowChecked(QAbstractButton& button, bool checked);
void ShowChecked(QAction& action, bool checked);
void ShowIndex(QComboBox& list, int index);
void ShowEnabled(QWidget& widget, bool enabled);
void ShowVisible(QWidget& widget, bool visible);

/// Gives a widget the name under which tests and screen readers find it, its tip, and an accessible name
/// where it has no text of its own.
void Name(QWidget& widget, const char* objectName, std::string_view tip = {},
          std::string_view accessible = {});

}  // namespace kestrune::windows
