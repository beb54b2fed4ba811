// SPDX-License-Identifier: MIT
#include "forms/informing.h"

#include <utility>

#include "core/window_names.h"

namespace qk {

InformingForm::InformingForm(std::string_view name, std::string caption, std::string text)
    : Form(name, std::move(caption),
           {.ClosesOnRestart = false, .Closable = false, .EscapeCloses = false}) {
  AddLabel("Label1", std::move(text));
}

EepromDataForm::EepromDataForm()
    : InformingForm(window::kEEPROMdata, "Initialising", "Loading Data from ROM") {
  bar_ = AddProgress("ProgressBar1");
}

}  // namespace qk
