// SPDX-License-Identifier: MIT
// "Time Domain Options": the time axis of a "TD" channel, its window function and the source of its
// dc term.
#pragma once

#include <array>
#include <optional>

#include "core/form.h"
#include "core/host.h"
#include "core/session.h"
#include "display/graphs.h"

namespace qk {

class TdrOpts : public Form {
 public:
  TdrOpts(Session& session, Host& host, Graphs& graphs);

  // Intentional: the window opens with the defaults, not with the current settings.
  void OnOpen() override;
  // After a session file. Intentional: only "Open", "Auto", "RaisedCos" and "KaiserB" are
  // recognised; a short termination and a rectangular window leave their buttons unchanged.
  void OnSessionLoaded() override;
  // Distance and gate show the current settings.
  void OnSessionChanged() override;

 private:
  struct Axis {
    double T1, T2;  // ns
  };

  void AddAxis();
  void AddDcTerm();
  void AddWindow();
  void AddDistance();
  void AddGate();
  void ShowDistance();
  void ShowGate();
  void ChooseCable();
  void FindFactor();
  // False, after a message, if the fields of distance or gate are invalid.
  bool TakeDistanceAndGate();
  void Apply();
  // The axis from the fields; empty, after a message, if it is invalid.
  std::optional<Axis> EnteredAxis();

  Session& session_;
  Host& host_;
  Graphs& graphs_;
  OptionGroup axes_, dcTerms_, windows_, scale_, gate_;
  EntryGroup distanceAndGate_, response_;  // both are applied by Apply
  Handle t1_, t2_, resistance_, order_, cable_, factor_, length_, gateStart_, gateStop_;
  std::array<Handle, 4> gated_;
};

}  // namespace qk
