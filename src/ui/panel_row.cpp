// SPDX-License-Identifier: MIT
#include "ui/panel_row.h"

#include <algorithm>

#include "ui/panel_label.h"

namespace qk {

namespace {

struct PanelLook {
  const char* Widest;  // the text that the panel must fit
  const char* ToolTip;
};
constexpr std::array<PanelLook, kPanels> kPanelLooks{
    {{"SN. 00000", "Serial number of the instrument"},
     {" 16, 115.2 Kb/s ", "Serial port and speed"},
     {"S11+S21 Cal ? Port 2 Overload!", "Calibration in force, overload and limit messages"},
     {"P1 Level: -20dBm", "Test signal level at port 1"},
     {"Temp -00.0 degC", "Temperature of the receiver"},
     {"SWEEP ON ", "Sweep"},
     {"0000.0000 MHz", "Frequency step of the sweep"}}};
constexpr std::size_t kLast = 2;  // shortened last
constexpr int kBetween = 4;

}  // namespace

PanelRow::PanelRow() {
  for (std::size_t i = 0; i < kPanelLooks.size(); ++i) {
    panels_[i] = new PanelLabel(kPanelLooks[i].Widest, kPanelLooks[i].ToolTip);
    panels_[i]->setParent(this);
    panels_[i]->setObjectName("Panel" + QString::number(i + 1));
  }
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void PanelRow::Show(Panel panel, const QString& text) {
  panels_[static_cast<std::size_t>(panel) - 1]->Show(text);
  Arrange();
}

void PanelRow::Remark(Panel panel, const QString& remark) {
  panels_[static_cast<std::size_t>(panel) - 1]->SetRemark(remark);
}

QSize PanelRow::sizeHint() const {
  QSize size(-kBetween, 0);
  for (const PanelLabel* panel : panels_)
    size = QSize(size.width() + panel->sizeHint().width() + kBetween,
                 std::max(size.height(), panel->sizeHint().height()));
  return size;
}

QSize PanelRow::minimumSizeHint() const {
  QSize size(-kBetween, 0);
  for (const PanelLabel* panel : panels_)
    size = QSize(size.width() + panel->minimumSizeHint().width() + kBetween,
                 std::max(size.height(), panel->minimumSizeHint().height()));
  return size;
}

void PanelRow::resizeEvent(QResizeEvent*) {
  Arrange();
}

void PanelRow::Arrange() {
  std::array<int, kPanelLooks.size()> widths{};
  int others = 0, least = 0;
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    widths[i] = panels_[i]->sizeHint().width();
    if (i == kLast) continue;
    others += widths[i];
    least += panels_[i]->minimumSizeHint().width();
  }
  const int room = width() - kBetween * static_cast<int>(panels_.size() - 1);
  const int wanted = panels_[kLast]->WholeWidth();
  // The width that the others must give up for the third panel, each in proportion to what it can
  // spare.
  const int missing = std::clamp(wanted + others - room, 0, others - least);
  int left = room;
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    if (i == kLast) continue;
    const int spare = widths[i] - panels_[i]->minimumSizeHint().width();
    // Rounded up, so that together they give up at least what is missing.
    const int spares = others - least;
    if (missing > 0 && spares > 0)
      widths[i] -= std::min(spare, (spare * missing + spares - 1) / spares);
    left -= widths[i];
  }
  widths[kLast] = std::max(left, panels_[kLast]->minimumSizeHint().width());
  int x = 0;
  for (std::size_t i = 0; i < panels_.size(); ++i) {
    panels_[i]->setGeometry(x, 0, widths[i], height());
    x += widths[i] + kBetween;
  }
}

}  // namespace qk
