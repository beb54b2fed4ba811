// The bench of the demonstration: what is connected to the simulated ports, and what may be.
#pragma once

#include <string>

#include <QTimer>
#include <QWidget>

#include "sim/instrument.h"

class QComboBox;
class QLabel;

namespace qk {

class BenchWindow : public QWidget {
 public:
  explicit BenchWindow(sim::Instrument& bench);

  // To the right of window, or as far right as the screen allows.
  void PlaceBeside(const QWidget& window);

 private:
  QComboBox* DeviceList();
  QComboBox* StandardList(const QString& name, const char* port);
  void Run(const std::string& line);
  void RunFile();
  void ShowConnected();

  sim::Instrument& bench_;
  QLabel* connected_;
  QLabel* refused_;
  QTimer refresh_;
};

}  // namespace qk
