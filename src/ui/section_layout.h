// SPDX-License-Identifier: MIT
// Lays out the controls of a form's section: rows of fields, a grid, a row, or the buttons at the
// bottom.
#pragma once

class QWidget;

namespace qk {

class Binder;
class Form;

// A frame (or, without a title, a plain area) with the bound controls of that section; nullptr if
// it has none. Its size policy is Expanding if it contains a picture or a multi-line text.
QWidget* LaidOutSection(Binder& binder, const Form& form, int section);

}  // namespace qk
