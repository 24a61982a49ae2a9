#pragma once

#include <QProcess>
#include <QTemporaryDir>
#include <string>

namespace kestrune::apps {

/// The program's own virtual receiver, for a first look without a radio. Its line and its sound are in a
/// temporary folder; it ends with this object.
class DemoReceiver {
 public:
  /// `programFolder` holds the program kestrune-radio. Waits up to 5 s for it to be ready.
  explicit DemoReceiver(const std::string& programFolder);
  ~DemoReceiver();
  DemoReceiver(const DemoReceiver&) = delete;
  DemoReceiver& operator=(const DemoReceiver&) = delete;

  /// Empty if it runs, else what went wrong.
  [[nodiscard]] const std::string& Error() const { return error_; }
  [[nodiscard]] std::string LinePath() const;
  [[nodiscard]] std::string SoundPath() const;

 private:
  QTemporaryDir folder_;
  QProcess program_;
  std::string error_;
};

}  // namespace kestrune::apps
