#pragma once

#include <QWidget>
#include <array>
#include <cstddef>
#include <string>

#include "config/settings/SettingsSection.h"
#include "presenters/MixerWindow.h"

class QCheckBox;
class QGridLayout;
class QLabel;
class QSlider;

namespace kestrune::windows {

/// The record mixer. Not modal; made when it is shown, deleted by itself once it has closed.
class frmMixer final : public QWidget {
 public:
  /// Turns the mixer to a recording device, by its id, and places itself. The references must outlive the window.
  frmMixer(presenters::MixerWindow& rules, const config::SettingsSection& section, const std::string& device,
           QWidget* parent = nullptr);
  ~frmMixer() override;
  frmMixer(const frmMixer&) = delete;
  frmMixer& operator=(const frmMixer&) = delete;

  /// Takes in what other programs have changed, and shows it.
  void Refresh();

 protected:
  void changeEvent(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Column {
    QLabel* Label = nullptr;
    QLabel* Label3 = nullptr;
    QSlider* slVolume = nullptr;
    QLabel* Label2 = nullptr;
    QSlider* slBalance = nullptr;
    QCheckBox* chSelect = nullptr;
    std::string Shown;  // the line's name, as a whole
  };

  void MakeColumn(std::size_t index, QWidget& frame, QGridLayout& grid);
  void Show();
  void ShowName(Column& column, const std::string& name);

  presenters::MixerWindow& rules_;
  const config::SettingsSection& section_;
  std::array<Column, presenters::MixerWindow::kColumns> columns_;
  QLabel* nothing_ = nullptr;  // stands where a device has no line
  bool closed_ = false;
};

}  // namespace kestrune::windows
