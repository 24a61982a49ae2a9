#include "windows/QtDialogs.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <optional>
#include <utility>

#include "windows/Binding.h"
#include "windows/ProgramIcon.h"
#include "windows/frmLegal.h"

namespace kestrune::windows {
namespace {

using platform::MessageAnswer;
using platform::MessageButtons;
using platform::MessageIcon;

/// A question stands under the ordinary pointer, also while the program is busy.
class OrdinaryPointer {
 public:
  OrdinaryPointer() {
    if (const QCursor* cursor = QApplication::overrideCursor()) {
      covered_ = *cursor;
      QApplication::changeOverrideCursor(Qt::ArrowCursor);
    }
  }
  ~OrdinaryPointer() {
    if (covered_ && QApplication::overrideCursor() != nullptr) QApplication::changeOverrideCursor(*covered_);
  }
  OrdinaryPointer(const OrdinaryPointer&) = delete;
  OrdinaryPointer& operator=(const OrdinaryPointer&) = delete;

 private:
  std::optional<QCursor> covered_;
};

QMessageBox::Icon IconOf(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Warning:
      return QMessageBox::Warning;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case MessageButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MessageButtons::Ok:
      break;
  }
  return QMessageBox::Ok;
}

}  // namespace

QtDialogs::QtDialogs(std::string agreementFile, bool agreementAccepted)
    : agreementFile_(std::move(agreementFile)), agreementAccepted_(agreementAccepted) {}

MessageAnswer QtDialogs::Show(const platform::Message& message) {
  const MessageAnswer safe = SafeAnswer(message.Buttons);
  if (givenUp_) return safe;
  const OrdinaryPointer pointer;
  QWidget* parent = QApplication::activeModalWidget();
  if (parent == nullptr) parent = QApplication::activeWindow();
  // On the heap and watched: the window over which it stands may go first.
  const QPointer<QMessageBox> box = new QMessageBox(IconOf(message.Icon), ToQt(message.Title),
                                                    ToQt(message.Text), ButtonsOf(message.Buttons), parent);
  box->setTextFormat(Qt::PlainText);
  box->setWindowIcon(ProgramIcon());
  box->setEscapeButton(message.Buttons == MessageButtons::YesNoCancel ? QMessageBox::Cancel
                       : message.Buttons == MessageButtons::YesNo     ? QMessageBox::No
                                                                      : QMessageBox::Ok);
  const int pressed = box->exec();
  delete box.data();
  switch (pressed) {
    case QMessageBox::Yes:
      return MessageAnswer::Yes;
    case QMessageBox::No:
      return MessageAnswer::No;
    case QMessageBox::Cancel:
      return MessageAnswer::Cancel;
    default:
      return safe;
  }
}

bool QtDialogs::AskForAgreement() {
  if (agreementAccepted_) return true;
  if (givenUp_) return false;
  const OrdinaryPointer pointer;
  frmLegal window(agreementFile_, *this);
  return window.exec() == QDialog::Accepted;
}

void QtDialogs::GiveUp() {
  givenUp_ = true;
  // From the innermost outwards; each returns to whoever asked once this call has returned.
  for (QWidget* window : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(window);
    if (dialog != nullptr && dialog->isVisible() && dialog->isModal()) dialog->reject();
  }
}

}  // namespace kestrune::windows
