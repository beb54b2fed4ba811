// The bench of the demonstration: what is connected to the simulated ports, and what may be.
#pragma once

#include <string>

#include <QTimer>
#include <QWidget>

#include "sim/instrument.h"

class QCheckBox;
class QComboBox;
class QLabel;

namespace qk {

class BenchWindow : public QWidget {
 public:
  explicit BenchWindow(sim::Instrument& bench);

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
