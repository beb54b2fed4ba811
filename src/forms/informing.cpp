#include "forms/informing.h"

#include <utility>

namespace qk {

InformingForm::InformingForm(std::string name, std::string caption, std::string text)
    : Form(std::move(name), std::move(caption)) {
  AddLabel("Label1", std::move(text));
}

EepromDataForm::EepromDataForm()
    : InformingForm("EEPROMdata", "Initialising", "Loading Data from ROM") {
  AddProgress("ProgressBar1");
}

void EepromDataForm::OnOpen() {
  (*this)["ProgressBar1"].Percent = 0;
}

}  // namespace qk
