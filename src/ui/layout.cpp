#include "ui/layout.h"

#include <algorithm>

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>

namespace qk {

QGroupBox* Frame(const QString& title, QLayout* layout) {
  auto* frame = new QGroupBox(title);
  frame->setLayout(layout);
  return frame;
}

void AddFieldRow(QGridLayout& grid, QWidget* caption, QWidget* field, QWidget* unit) {
  const int row = grid.rowCount();
  grid.addWidget(caption, row, 0);
  grid.addWidget(field, row, 1);
  if (unit != nullptr) grid.addWidget(unit, row, 2);
}

QHBoxLayout* ButtonRow(std::initializer_list<QPushButton*> buttons) {
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  int width = 0;
  for (QPushButton* button : buttons) width = std::max(width, button->sizeHint().width());
  for (QPushButton* button : buttons) {
    button->setMinimumWidth(width);
    row->addWidget(button);
  }
  return row;
}

}  // namespace qk
