#include "windows/Binding.h"

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QTextDocument>
#include <QWidget>

#include "base/Text.h"

namespace kestrune::windows {

QString ToQt(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string FromQt(const QString& text) {
  return text.toStdString();
}

std::string Undoubled(std::string_view caption) {
  return base::ReplaceAll(caption, "&&", "&");
}

QString PlainTip(const QString& text) {
  return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

void ShowText(QLabel& label, std::string_view text) {
  const QString wanted = ToQt(text);
  if (label.text() != wanted) label.setText(wanted);
}

void ShowText(QLineEdit& line, std::string_view text) {
  const QString wanted = ToQt(text);
  if (line.text() == wanted) return;
  const QSignalBlocker quiet(line);
  line.setText(wanted);
}

void ShowText(QAbstractButton& button, std::string_view text) {
  const QString wanted = ToQt(text);
  if (button.text() != wanted) button.setText(wanted);
}

void ShowChecked(QAbstractButton& button, bool checked) {
  const QSignalBlocker quiet(button);
  button.setChecked(checked);
}

// A menu needs its actions' change signal, so that one is not blocked: bindings use `triggered`, which only
// the user causes.
void ShowChecked(QAction& action, bool checked) {
  if (action.isChecked() != checked) action.setChecked(checked);
}

void ShowIndex(QComboBox& list, int index) {
  if (list.currentIndex() == index) return;
  const QSignalBlocker quiet(list);
  list.setCurrentIndex(index);
  list.update();
}

void ShowEnabled(QWidget& widget, bool enabled) {
  // Tests what was set on the widget itself, since its whole window may be disabled.
  if (widget.isEnabledTo(widget.parentWidget()) != enabled) widget.setEnabled(enabled);
}

void ShowVisible(QWidget& widget, bool visible) {
  if (widget.isHidden() == visible) widget.setVisible(visible);
}

void Name(QWidget& widget, const char* objectName, std::string_view tip, std::string_view accessible) {
  widget.setObjectName(QLatin1String(objectName));
  if (!tip.empty()) widget.setToolTip(ToQt(tip));
  if (!accessible.empty()) widget.setAccessibleName(ToQt(accessible));
}

}  // namespace kestrune::windows
