#include "apps/kestrune/DemoReceiver.h"

#include <QStringList>

namespace kestrune::apps {
namespace {

constexpr int kReadyMs = 5000;
constexpr int kEndMs = 2000;

}  // namespace

DemoReceiver::DemoReceiver(const std::string& programFolder) {
  program_.setProcessChannelMode(QProcess::SeparateChannels);
  program_.setStandardErrorFile(QProcess::nullDevice());
  program_.start(QString::fromStdString(programFolder + "/kestrune-radio"),
                 {"--link", QString::fromStdString(LinePath()), "--sound",
                  "pipe:" + QString::fromStdString(SoundPath())});
  // The first line that it prints names its line: by then line, link and pipe are there.
  if (!program_.waitForReadyRead(kReadyMs)) {
    error_ = "the virtual receiver kestrune-radio did not start: " + program_.errorString().toStdString();
  }
}

DemoReceiver::~DemoReceiver() {
  if (program_.state() == QProcess::NotRunning) return;
  program_.terminate();
  if (!program_.waitForFinished(kEndMs)) program_.kill();
  program_.waitForFinished(kEndMs);
}

std::string DemoReceiver::LinePath() const {
  return folder_.filePath("radio.tty").toStdString();
}

std::string DemoReceiver::SoundPath() const {
  return folder_.filePath("radio.pcm").toStdString();
}

}  // namespace kestrune::apps
