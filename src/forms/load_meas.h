// SPDX-License-Identifier: MIT
// "Load Touchstone Data": a file's S-parameters into the stored traces of the displayed channels.
#pragma once

#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

// Stored traces are at 50 ohms: false while the measurement is converted to another impedance,
// which is told.
bool MayLoadMeasurements(const Session& session, Prompts& prompts);

// The action of the window for a file that is chosen already (one that was dropped): into the
// traces, then a replot. Who has taken it, which the graphs may not show, is given and stands in
// panel 3 for a while. A failure is shown and changes nothing.
std::optional<std::string> LoadMeasurements(Controller& controller, const std::string& path);

class LoadMeas : public Form {
 public:
  explicit LoadMeas(Controller& controller);

  void OnOpen() override;

 private:
  void SelectFile();

  Controller& controller_;
  Handle hint_;
};

}  // namespace qk
