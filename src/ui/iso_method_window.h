// "Isolation Calibration": the three connection schemes as pictures, with a button each.
#pragma once

#include <vector>

#include <QWidget>

#include "ui/form_window.h"

namespace qk {

// One scheme drawn: the instrument with its two ports and what stands on them, a row a sweep.
class SchemePicture : public QWidget {
 public:
  struct Sweep {
    QString Port1, Port2;  // "DUT", "Load"
  };
  explicit SchemePicture(std::vector<Sweep> sweeps);

  QSize sizeHint() const override { return {220, 200}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void DrawSweep(QPainter& painter, const QRectF& box, const Sweep& sweep) const;

  std::vector<Sweep> sweeps_;
};

class IsoMethodWindow : public DialogWindow {
 public:
  IsoMethodWindow(Form& form, QtHost& host, QWidget* mainWindow);
};

}  // namespace qk
