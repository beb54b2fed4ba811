#include "ui/iso_method_window.h"

#include <algorithm>

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace qk {

SchemePicture::SchemePicture(std::vector<Sweep> sweeps) : sweeps_(std::move(sweeps)) {
  setMinimumSize(200, 180);
}

void SchemePicture::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), palette().base());
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
  const double height = (this->height() - 16.0) / static_cast<double>(sweeps_.size());
  for (std::size_t i = 0; i < sweeps_.size(); ++i) {
    const QRectF box(12, 8 + height * static_cast<double>(i), width() - 24.0, height);
    DrawSweep(painter, box, sweeps_[i]);
    if (sweeps_.size() > 1) {
      painter.setPen(palette().color(QPalette::Text));
      painter.drawText(box, Qt::AlignLeft | Qt::AlignTop, QString::number(i + 1) + ".");
    }
  }
}

// The instrument as a box with two connectors; a line from each down to what stands on it. A load
// is shown as its resistor to ground.
void SchemePicture::DrawSweep(QPainter& painter, const QRectF& box, const Sweep& sweep) const {
  const QColor ink = palette().color(QPalette::Text);
  const double boxHeight = std::min(34.0, box.height() * 0.3);
  const double top = box.top() + (box.height() - boxHeight - 62) / 2;
  const QRectF instrument(box.left() + box.width() * 0.14, top, box.width() * 0.72, boxHeight);
  painter.setPen(QPen(ink, 1.2));
  painter.setBrush(palette().color(QPalette::Button));
  painter.drawRoundedRect(instrument, 4, 4);
  painter.setPen(ink);
  const QRectF half(instrument.left(), instrument.top(), instrument.width() / 2, boxHeight);
  painter.drawText(half, Qt::AlignCenter, "Port 1");
  painter.drawText(half.translated(half.width(), 0), Qt::AlignCenter, "Port 2");

  const struct {
    double X;
    const QString& Name;
  } ports[] = {{half.center().x(), sweep.Port1}, {half.center().x() + half.width(), sweep.Port2}};
  for (const auto& port : ports) {
    const double from = instrument.bottom();
    painter.setPen(QPen(ink, 1.6));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawLine(QPointF(port.X, from), QPointF(port.X, from + 18));
    painter.drawEllipse(QPointF(port.X, from), 3.5, 3.5);
    const bool device = port.Name == "DUT";
    const QRectF part(port.X - 26, from + 18, 52, 26);
    painter.setPen(QPen(ink, 1.2));
    painter.setBrush(device ? palette().color(QPalette::Highlight)
                            : palette().color(QPalette::Base));
    painter.drawRoundedRect(part, 3, 3);
    painter.setPen(device ? palette().color(QPalette::HighlightedText) : ink);
    painter.drawText(part, Qt::AlignCenter, port.Name);
    if (device) continue;
    painter.setPen(QPen(ink, 1.2));
    const double ground = part.bottom() + 8;
    painter.drawLine(QPointF(port.X, part.bottom()), QPointF(port.X, ground));
    for (int i = 0; i < 3; ++i)
      painter.drawLine(QPointF(port.X - 9 + 3 * i, ground + 3 * i),
                       QPointF(port.X + 9 - 3 * i, ground + 3 * i));
  }
}

IsoMethodWindow::IsoMethodWindow(Form& form, QtHost& host, QWidget* mainWindow)
    : DialogWindow(form, host, mainWindow) {
  struct Scheme {
    const char* Label;
    const char* Button;
    char Mnemonic;
    std::vector<SchemePicture::Sweep> Sweeps;
  };
  const QString load = QStringLiteral("Load");
  const QString device = QStringLiteral("DUT");
  const Scheme schemes[] = {{"Label1", "Command1", 'C', {{load, load}}},
                            {"Label2", "Command2", 'k', {{device, device}}},
                            {"Label3", "Command3", 'm', {{device, load}, {load, device}}}};
  auto* row = new QHBoxLayout(this);
  row->setSpacing(14);
  for (const Scheme& scheme : schemes) {
    auto* column = new QVBoxLayout;
    QLabel* label = GetBinder().Caption(scheme.Label);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
    label->setMinimumHeight(3 * label->fontMetrics().height());
    column->addWidget(label);
    column->addWidget(new SchemePicture(scheme.Sweeps), 1);
    column->addWidget(GetBinder().Button(scheme.Button));
    row->addLayout(column, 1);
  }
}

}  // namespace qk
