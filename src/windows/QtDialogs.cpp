#include "windows/QtDialogs.h"

#include <QApplication>
#include <QCursor>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <algorithm>
#include <memory>
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

/// A question shows the ordinary pointer even while the program is busy.
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

/// A box that stops nothing.
struct OpenBox {
  platform::Dialogs::Answered Tell;
  std::optional<OrdinaryPointer> Pointer{std::in_place};
};

/// A line of the text breaks only if it is longer than this: by itself a box breaks it at half the screen or earlier.
constexpr int kLettersOfALine = 100;

void KeepLines(const QMessageBox& box) {
  auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
  if (label == nullptr) return;
  int widest = 0;
  for (const QString& line : box.text().split(QLatin1Char('\n')))
    widest = std::max(widest, label->fontMetrics().horizontalAdvance(line));
  label->setMinimumWidth(std::min(widest + 1, kLettersOfALine * label->fontMetrics().averageCharWidth()));
}

/// On the heap, over the window that is in front.
QMessageBox* MakeBox(const platform::Message& message) {
  QWidget* parent = QApplication::activeModalWidget();
  if (parent == nullptr) parent = QApplication::activeWindow();
  auto* box = new QMessageBox(IconOf(message.Icon), ToQt(message.Title), ToQt(message.Text),
                              ButtonsOf(message.Buttons), parent);
  box->setTextFormat(Qt::PlainText);
  KeepLines(*box);
  // Without details there is no button for them.
  box->setDetailedText(ToQt(message.Details));
  box->setWindowIcon(ProgramIcon());
  box->setEscapeButton(message.Buttons == MessageButtons::YesNoCancel ? QMessageBox::Cancel
                       : message.Buttons == MessageButtons::YesNo     ? QMessageBox::No
                                                                      : QMessageBox::Ok);
  return box;
}

MessageAnswer AnswerOf(int pressed, MessageButtons buttons) {
  switch (pressed) {
    case QMessageBox::Yes:
      return MessageAnswer::Yes;
    case QMessageBox::No:
      return MessageAnswer::No;
    case QMessageBox::Cancel:
      return MessageAnswer::Cancel;
    default:
      return platform::SafeAnswer(buttons);
  }
}

}  // namespace

QtDialogs::QtDialogs(std::string agreementFile, bool agreementAccepted)
    : agreementFile_(std::move(agreementFile)), agreementAccepted_(agreementAccepted) {}

MessageAnswer QtDialogs::Show(const platform::Message& message) {
  if (givenUp_) return SafeAnswer(message.Buttons);
  const OrdinaryPointer pointer;
  // Watched: the window over which it stands may go first.
  const QPointer<QMessageBox> box = MakeBox(message);
  const int pressed = box->exec();
  delete box.data();
  return AnswerOf(pressed, message.Buttons);
}

void QtDialogs::Open(const platform::Message& message, Answered answered) {
  if (givenUp_) return answered(SafeAnswer(message.Buttons));
  QMessageBox* box = MakeBox(message);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowModality(Qt::ApplicationModal);
  // It ends when it is answered, or with the window over which it stands.
  const auto open = std::make_shared<OpenBox>();
  open->Tell = std::move(answered);
  const auto end = [open, buttons = message.Buttons](int pressed) {
    open->Pointer.reset();
    if (const Answered tell = std::exchange(open->Tell, {})) tell(AnswerOf(pressed, buttons));
  };
  QObject::connect(box, &QDialog::finished, box, end);
  QObject::connect(box, &QObject::destroyed, qApp, [end] { end(QMessageBox::NoButton); });
  box->show();
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
  // From the innermost outwards; each returns to its caller after this call has returned.
  for (QWidget* window : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(window);
    if (dialog != nullptr && dialog->isVisible() && dialog->isModal()) dialog->reject();
  }
}

}  // namespace kestrune::windows
