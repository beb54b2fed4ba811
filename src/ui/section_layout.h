// SPDX-License-Identifier: MIT
// How the controls of a form's section stand: rows of fields, a grid, a row, the buttons at the
// foot.
#pragma once

class QWidget;

namespace qk {

class Binder;
class Form;

// A frame (or, without a title, a plain area) with the controls of that section, bound; nullptr
// when it has none. Its size policy is Expanding when a picture or a long text stands in it.
QWidget* LaidOutSection(Binder& binder, const Form& form, int section);

}  // namespace qk
