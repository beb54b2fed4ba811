// SPDX-License-Identifier: MIT
// "Trace Markers": the markers of the graph that was right-clicked: their frequencies, their trace,
// and whether the reference is fixed.
#pragma once

#include <array>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class AdjMarkers : public Form {
 public:
  explicit AdjMarkers(Controller& controller);

  void OnOpen() override { ShowMarkers(true); }
  // Another graph was clicked, or the markers were moved.
  void OnSessionChanged() override;
  void OnHidden() override;

 private:
  // overTyped: also overwrites what the user has typed but not applied.
  void ShowMarkers(bool overTyped);
  void ApplyFrequencies();
  void ToggleFix();
  void FlipTrace(int marker);
  void RedrawOverlay();

  Controller& controller_;
  Session& session_;
  Host& host_;
  int shownGraph_ = 0;  // from 0
  std::array<Handle, kMarkers> value_, trace_, fix_;
  EntryGroup frequencies_;
};

}  // namespace qk
