// Pieces that the windows are laid out from.
#pragma once

#include <initializer_list>

#include <QString>

class QGridLayout;
class QGroupBox;
class QHBoxLayout;
class QLayout;
class QPushButton;

class QWidget;

namespace qk {

class Binder;

// A titled frame with that layout inside.
QGroupBox* Frame(const QString& title, QLayout* layout);

// A row of a grid: caption at the left, the field, and its unit at the right (may be nothing).
void AddFieldRow(QGridLayout& grid, QWidget* caption, QWidget* field, QWidget* unit = nullptr);

// Buttons of one size side by side, pushed to the right edge.
QHBoxLayout* ButtonRow(std::initializer_list<QPushButton*> buttons);

}  // namespace qk
