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

/// How a window shows a record. Each call changes its widget only if the widget shows something else, and
/// emits no signals, so that showing a record is never mistaken for something that the user did.
namespace kestrune::windows {

[[nodiscard]] QString ToQt(std::string_view utf8);
[[nodiscard]] std::string FromQt(const QString& text);

/// Replaces each "&&" by "&": the plain text of a record's caption.
[[nodiscard]] std::string Undoubled(std::string_view caption);
/// A tip for text from outside. It is shown literally even if it looks like markup.
[[nodiscard]] QString PlainTip(const QString& text);

void ShowText(QLabel& label, std::string_view text);
void ShowText(QLineEdit& line, std::string_view text);
void ShowText(QAbstractButton& button, std::string_view text);
void ShowChecked(QAbstractButton& button, bool checked);
void ShowChecked(QAction& action, bool checked);
void ShowIndex(QComboBox& list, int index);
void ShowEnabled(QWidget& widget, bool enabled);
void ShowVisible(QWidget& widget, bool visible);

/// Gives a widget its object name, which tests use, its tip, and an accessible name if it has no text of its
/// own.
void Name(QWidget& widget, const char* objectName, std::string_view tip = {},
          std::string_view accessible = {});

}  // namespace kestrune::windows
