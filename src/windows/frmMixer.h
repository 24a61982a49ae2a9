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
  /// Opens the mixer and places itself. The references must outlive the window.
  frmMixer(presenters::MixerWindow& rules, const config::SettingsSection& section, QWidget* parent = nullptr);
  ~frmMixer() override;
  frmMixer(const frmMixer&) = delete;
  frmMixer& operator=(const frmMixer&) = delete;

  /// Takes in what has changed elsewhere, and shows it.
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
  QLabel* nothing_ = nullptr;  // shown if the device has no lines
  bool closed_ = false;
};

}  // namespace kestrune::windows
