// SPDX-License-Identifier: MIT
// The bench window of the demonstration: shows and selects what is connected to the simulated
// ports.
#pragma once

#include <array>
#include <functional>
#include <string>

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include "sim/instrument.h"

class QComboBox;
class QLabel;
class QPushButton;

namespace qk {

class BenchWindow : public QWidget {
 public:
  explicit BenchWindow(sim::Instrument& bench);

  // Moves to the right of window, or as far right as the screen allows.
  void PlaceBeside(const QWidget& window);
  // Called before the main window is first shown, if the user has not positioned it before: narrows
  // it so that the bench window fits next to it, if the screen has room for both.
  void MakeRoom(QWidget& main);
  // Moves away if it would cover the main window and the screen has room next to it; otherwise only
  // away from the marker table, switches and axis numbers. It is wholly on the screen then. False
  // if it would cover most of the graphs all the same.
  bool LeaveClear(const QWidget& main);
  // Stays above the main window, and usable while a prompt or a modal window blocks that.
  void setVisible(bool visible) override;
  // Shows it in front with the keyboard focus.
  void ToFront();

  // "Calibrate and measure for me" was clicked, to start or to stop; may be empty.
  std::function<void()> OnPlay;
  // Whether the program allows the playback to start now; empty: always.
  std::function<bool()> MayPlay;
  // Shows the current step of the playback; empty if none.
  void ShowStep(const std::string& step);

 protected:
  // Escape closes it.
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QComboBox* DeviceList();
  QComboBox* StandardList(const QString& name, const char* port);
  void Run(const std::string& line);
  void RunFile();
  void ShowConnected();
  void ShowInLists();

  sim::Instrument& bench_;
  QPointer<QWindow> over_;
  QLabel* connected_;
  std::array<QComboBox*, 3> lists_{};  // devices, and standards at port 1 and 2
  QLabel* refused_;
  QPushButton* play_;
  QLabel* step_;
  QTimer refresh_;
};

}  // namespace qk
