// "Load Touchstone Data": a file's S-parameters into the stored traces of the displayed channels.
#pragma once

#include <string>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

// Stored traces are at 50 ohms: false while the measurement is converted to another impedance,
// which is told.
bool MayLoadMeasurements(const Session& session, Prompts& prompts);

// The action of the window for a file that is chosen already (one that was dropped): into the
// traces, then a replot. What fails is told, and changes nothing.
void LoadMeasurements(Controller& controller, const std::string& path);

class LoadMeas : public Form {
 public:
  explicit LoadMeas(Controller& controller);

 private:
  void SelectFile();

  Controller& controller_;
};

}  // namespace qk
