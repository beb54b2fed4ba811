// SPDX-License-Identifier: MIT
// "Load Touchstone Data": loads a file's S-parameters into the stored traces of the displayed
// channels.
#pragma once

#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

// Stored traces are at 50 ohms: shows a message and returns false while the measurement is
// converted to another impedance.
bool MayLoadMeasurements(const Session& session, Prompts& prompts);

// The window's action for a given file (one that was dropped): loads it into the traces and
// replots. Returns which channels took it and shows this in panel 3 for a while, because the graphs
// may not show it. A failure shows a message and changes nothing.
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
