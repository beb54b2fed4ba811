// SPDX-License-Identifier: MIT
// "Time Domain Options": the time axis of a "TD" channel, its window function and where its dc term
// comes from.
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

  // Intended: the window opens with the defaults, whatever is in force.
  void OnOpen() override;
  // After a session file. Intended: only "Open", "Auto", "RaisedCos" and "KaiserB" are recognised;
  // a short termination and a rectangular window leave their buttons as they stand.
  void OnSessionLoaded() override;
  // Distance and gate show what is in force.
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
  // False, after its message, when the fields of distance or gate cannot be taken.
  bool TakeDistanceAndGate();
  void Apply();
  // The axis of the fields; nothing, after its message, when it cannot be.
  std::optional<Axis> EnteredAxis();

  Session& session_;
  Host& host_;
  Graphs& graphs_;
  OptionGroup axes_, dcTerms_, windows_, scale_, gate_;
  Handle t1_, t2_, resistance_, order_, cable_, factor_, length_, gateStart_, gateStop_;
  std::array<Handle, 4> gated_;
};

}  // namespace qk
