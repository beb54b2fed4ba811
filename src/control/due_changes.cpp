// SPDX-License-Identifier: MIT
#include "control/due_changes.h"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "core/window_names.h"
#include "limits/limit_test.h"
#include "sweep/receiver.h"
#include "sweep/settings.h"

namespace qk {

namespace {

void ServeAverages(Rig& rig) {
  SweepFlags& flags = rig.session.Flags;
  const AveragingState& averaging = rig.session.Averaging;
  if (!flags.AveragesChangeDue) return;
  if (averaging.AverOn) {
    SetAveragesWhileIdle(rig, averaging.AveragesSet);
  } else if (flags.AveragesOffDue) {
    if (PutAveragesInForce(rig, 1)) flags.AveragesOffDue = false;
  }
}

void ServeDwell(Rig& rig) {
  if (!rig.session.Flags.DwellChangeDue) return;
  // Intentional: no longer due, even after a failure, which is shown. The next trigger sends what
  // the instrument does not hold, as for the level.
  std::ignore = SendDwell(rig);
  rig.session.Flags.DwellChangeDue = false;
}

void ServeLevel(Rig& rig) {
  if (!rig.session.Flags.LevelChangeDue) return;
  std::ignore = SendLevelTable(rig);
  rig.session.Flags.LevelChangeDue = false;
}

}  // namespace

void UpdateOffsets(Rig& rig) {
  std::ignore = MeasureOffsets(rig);  // a failure is shown; the old offsets are kept
  rig.session.Flags.OffsetUpdateDue = false;
  std::ignore = ReadTemperature(rig);  // a failure is shown; the last reading stays
}

std::int16_t PlotRefreshPointsFor(int averages, int numPoints) {
  const int a = static_cast<int>(std::floor(5.13 - averages * 0.13));
  const int b = numPoints / 100;
  return static_cast<std::int16_t>(std::clamp(a * b, 2, 10));
}

bool AnyChangeDue(const SweepFlags& flags) {
  return flags.OffsetUpdateDue || flags.AveragesChangeDue || flags.DwellChangeDue ||
         flags.LevelChangeDue;
}

void ServeDueChanges(Rig& rig, Graphs& graphs, std::span<const Parameter> measured) {
  Session& session = rig.session;
  if (session.Flags.OffsetUpdateDue) UpdateOffsets(rig);
  ServeAverages(rig);
  rig.host.windows.Hide(window::kUpdating);
  LimitTest(session, rig.host, measured);
  graphs.TakeVerdicts(LimitVerdicts(session, measured));
  session.Display.PlotRefreshPoints =
      PlotRefreshPointsFor(session.Averaging.Averages, session.Plan.NumPoints);
  ServeDwell(rig);
  ServeLevel(rig);
  if (session.Display.DisplayMode == DisplayMode::DataAndMemory &&
      session.Display.MemoryHold != MemoryHold::Off)
    graphs.ReplotAll();
}

}  // namespace qk
