// SPDX-License-Identifier: MIT
#include "ui/section_layout.h"

#include <algorithm>
#include <vector>

#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include "core/form.h"
#include "ui/binder.h"

namespace qk {

namespace {

using Controls = std::vector<const Control*>;

bool IsField(const Control& c) {
  return c.Kind == ControlKind::TextField || c.Kind == ControlKind::ListField;
}

// A multi-line label wraps its text and reserves space for its lines; it grows if a text needs more
// lines at the current font size.
QWidget* MadeLabel(Binder& binder, const Control& c) {
  QLabel* label = binder.Caption(c.Name);
  // An empty label keeps the space of its line.
  label->setMinimumHeight(label->fontMetrics().boundingRect(QRect(0, 0, 1, 1), 0, "X").height());
  if (c.Chars > 0) label->setMinimumWidth(label->fontMetrics().horizontalAdvance('0') * c.Chars);
  if (c.Lines > 1) {
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    label->setMinimumHeight(c.Lines * label->fontMetrics().lineSpacing());
    binder.Follow(c.Name, [label](const Control&) {
      if (!label->isVisible()) return;
      label->setMinimumHeight(
          std::max(label->minimumHeight(), label->heightForWidth(label->width())));
    });
  }
  return label;
}

QWidget* Made(Binder& binder, const Control& c) {
  return c.Kind == ControlKind::Label ? MadeLabel(binder, c) : binder.WidgetFor(c);
}

// Adds controls side by side; fields with caption and unit unless bare.
void AddToRow(Binder& binder, QHBoxLayout& row, const Control& c, bool caption) {
  if (!c.Heading.empty()) row.addWidget(new QLabel(QString::fromStdString(c.Heading)));
  QWidget* widget = Made(binder, c);
  if (caption && IsField(c) && !c.Caption.empty()) row.addWidget(binder.Caption(c.Name, widget));
  row.addWidget(widget);
  if (!c.Unit.empty()) row.addWidget(binder.Unit(c.Name));
}

// ---- fields ------------------------------------------------------------------------------------

// The rows of the section: a control and the controls next to it.
std::vector<Controls> Rows(const Controls& controls) {
  std::vector<Controls> rows;
  for (const Control* c : controls) {
    const bool sameGroup = !rows.empty() && c->Kind == ControlKind::OptionButton &&
                           rows.back().back()->Kind == ControlKind::OptionButton &&
                           rows.back().back()->Group == c->Group;
    if (rows.empty() || (!c->SameRow && !sameGroup)) rows.emplace_back();
    rows.back().push_back(c);
  }
  return rows;
}

constexpr int kFieldColumns = 3;

void AddSingle(Binder& binder, QGridLayout& grid, int row, const Control& c) {
  QWidget* widget = Made(binder, c);
  if (IsField(c)) {
    const bool wide = c.Wide || c.Lines > 1;
    if (!c.Caption.empty()) {
      grid.addWidget(binder.Caption(c.Name, widget), row, 0, 1, wide ? kFieldColumns : 1);
      if (wide) ++row;
    }
    if (wide) {
      grid.addWidget(widget, row, 0, 1, kFieldColumns);
      if (c.Lines > 1) grid.setRowStretch(row, 1);
    } else {
      grid.addWidget(widget, row, 1);
      if (!c.Unit.empty()) grid.addWidget(binder.Unit(c.Name), row, 2);
    }
  } else if (c.Kind == ControlKind::Button && !c.Wide) {
    grid.addWidget(widget, row, 1);
  } else {
    grid.addWidget(widget, row, 0, 1, kFieldColumns);
    if (c.Kind == ControlKind::Picture) grid.setRowStretch(row, 1);
  }
}

void AddShared(Binder& binder, QGridLayout& grid, int row, const Controls& controls) {
  const Control& first = *controls.front();
  auto* line = new QHBoxLayout;
  int column = 0;
  if (!first.Heading.empty()) {
    grid.addWidget(new QLabel(QString::fromStdString(first.Heading)), row, column++);
  } else if (IsField(first) && !first.Caption.empty()) {
    ++column;
  }
  for (const Control* c : controls) {
    if (c == &first) {
      QWidget* widget = Made(binder, *c);
      if (column > 0 && IsField(*c)) grid.addWidget(binder.Caption(c->Name, widget), row, 0);
      line->addWidget(widget);
      if (!c->Unit.empty()) line->addWidget(binder.Unit(c->Name));
    } else {
      AddToRow(binder, *line, *c, true);
    }
  }
  if (!IsField(*controls.back())) line->addStretch(1);
  grid.addLayout(line, row, column, 1, kFieldColumns - column);
}

QLayout* Fields(Binder& binder, const Controls& controls) {
  auto* grid = new QGridLayout;
  for (const Controls& row : Rows(controls)) {
    const int at = grid->rowCount();
    if (row.size() == 1 && row.front()->Heading.empty())
      AddSingle(binder, *grid, at, *row.front());
    else
      AddShared(binder, *grid, at, row);
  }
  grid->setColumnStretch(1, 1);
  return grid;
}

// ---- the others --------------------------------------------------------------------------------

QLayout* Grid(Binder& binder, const Controls& controls, int columns) {
  auto* grid = new QGridLayout;
  int cell = 0;
  for (const Control* c : controls) {
    cell += c->Gap;
    if (!c->Heading.empty() && cell >= columns)
      grid->addWidget(new QLabel(QString::fromStdString(c->Heading)), cell / columns - 1,
                      cell % columns);
    const int span = c->Wide ? columns - cell % columns : 1;
    QWidget* widget = Made(binder, *c);
    if (IsField(*c)) widget->setAccessibleName(QString::fromStdString(c->Caption));
    if (c->Unit.empty()) {
      grid->addWidget(widget, cell / columns, cell % columns, 1, span);
    } else {
      auto* pair = new QHBoxLayout;
      pair->addWidget(widget, 1);
      pair->addWidget(binder.Unit(c->Name));
      grid->addLayout(pair, cell / columns, cell % columns, 1, span);
    }
    cell += span;
  }
  return grid;
}

QLayout* Row(Binder& binder, const Controls& controls) {
  auto* row = new QHBoxLayout;
  bool fills = true;
  for (const Control* c : controls) {
    AddToRow(binder, *row, *c, true);
    fills = fills && (c->Kind == ControlKind::Button || c->Kind == ControlKind::Picture);
  }
  if (!fills) row->addStretch(1);
  return row;
}

QLayout* Actions(Binder& binder, const Controls& controls) {
  std::vector<QWidget*> widgets, buttons;
  for (const Control* c : controls) {
    widgets.push_back(Made(binder, *c));
    if (c->Kind == ControlKind::Button) buttons.push_back(widgets.back());
  }
  binder.Sync();  // the captions determine the widths
  int width = 0, sum = 0;
  for (const QWidget* button : buttons) {
    width = std::max(width, button->sizeHint().width());
    sum += button->sizeHint().width();
  }
  // Buttons of equal size; if the screen is too narrow, each as wide as its caption; if it is still
  // too narrow, in several rows.
  constexpr int kBetween = 12;
  const int count = static_cast<int>(buttons.size());
  const int room = QGuiApplication::primaryScreen()->availableSize().width() - 4 * kBetween;
  const int rows = std::max(1, (sum + count * kBetween + room - 1) / std::max(1, room));
  if (count * (width + kBetween) <= room)
    for (QWidget* button : buttons) button->setMinimumWidth(width);
  const std::size_t perRow =
      (widgets.size() + static_cast<std::size_t>(rows) - 1) / static_cast<std::size_t>(rows);
  auto* column = new QVBoxLayout;
  QHBoxLayout* row = nullptr;
  for (std::size_t i = 0; i < widgets.size(); ++i) {
    if (i % perRow == 0) {
      row = new QHBoxLayout;
      row->addStretch(1);
      column->addLayout(row);
    }
    row->addWidget(widgets[i]);
  }
  return column;
}

QLayout* LaidOut(Binder& binder, const Controls& controls, const SectionHints& hints) {
  switch (hints.How) {
    case Arrange::Grid:
      return Grid(binder, controls, hints.Columns);
    case Arrange::Row:
      return Row(binder, controls);
    case Arrange::Actions:
      return Actions(binder, controls);
    case Arrange::Fields:
      break;
  }
  return Fields(binder, controls);
}

}  // namespace

QWidget* LaidOutSection(Binder& binder, const Form& form, int section) {
  Controls controls;
  for (const Control& c : form.Controls())
    if (c.Section == section && c.Kind != ControlKind::MenuItem) controls.push_back(&c);
  if (controls.empty()) return nullptr;
  const FormSection& described = form.Sections()[static_cast<std::size_t>(section)];
  const QString title = QString::fromStdString(described.Title);
  QLayout* layout = LaidOut(binder, controls, described.Hints);
  if (title.isEmpty()) layout->setContentsMargins(0, 0, 0, 0);
  auto* box = new QVBoxLayout;
  box->setContentsMargins(0, 0, 0, 0);
  box->addLayout(layout);
  bool grows = false;  // a picture or a multi-line text takes the available space
  for (const Control* c : controls)
    grows = grows || c->Kind == ControlKind::Picture ||
            (c->Kind == ControlKind::TextField && c->Lines > 1);
  if (!grows) box->addStretch(1);
  QWidget* frame = title.isEmpty() ? new QWidget : new QGroupBox(title);
  frame->setLayout(box);
  if (grows) frame->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  return frame;
}

}  // namespace qk
