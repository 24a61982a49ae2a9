// A window titled "Drop Here" that takes files and writes a line for each: what is to be done with it, and its address.
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace {

class DropTarget final : public QWidget {
 public:
  DropTarget() {
    setWindowTitle(QStringLiteral("Drop Here"));
    setGeometry(1000, 700, 200, 200);
    setAcceptDrops(true);
  }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override {
    if (event->mimeData()->hasUrls()) event->acceptProposedAction();
  }
  void dropEvent(QDropEvent* event) override {
    event->acceptProposedAction();
    for (const QUrl& url : event->mimeData()->urls()) {
      std::printf("%s %s\n", event->dropAction() == Qt::CopyAction ? "copy" : "move",
                  url.toEncoded().constData());
    }
    std::fflush(stdout);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  DropTarget target;
  target.show();
  return QApplication::exec();
}
