// SPDX-License-Identifier: MIT
#include "benchmarks/fixtures.h"

#include <cmath>

namespace qk::benchmarks {

namespace {
// A phasor of the given size that turns `turns` times over the plan.
Complex Phasor(double size, double turns, double x) {
  const double angle = 6.283185307179586 * turns * x;
  return {size * std::cos(angle), size * std::sin(angle)};
}

void FillTerms(PortTerms& terms, int k, double x, double tilt) {
  terms.ED.Set(k, Phasor(0.03, 3 + tilt, x));
  terms.ERT.Set(k, Phasor(0.9 - 0.2 * x, 2 + tilt, x));
  terms.ES.Set(k, Phasor(0.1, 4 - tilt, x));
  terms.EX.Set(k, Phasor(1e-4, 5, x));
  terms.ETT.Set(k, Phasor(0.8 - 0.2 * x, 2.5 + tilt, x));
  terms.EL.Set(k, Phasor(0.12, 3.5 - tilt, x));
}
}  // namespace

std::unique_ptr<Session> MakeMeasuringSession(int numPoints) {
  auto session = MakeSession();
  PlanGrid& grid = session->Plan;
  grid.NumPoints = static_cast<std::int16_t>(numPoints);
  grid.StartFreq = 3e6;
  grid.StepFreq = std::floor(2.997e9 / (numPoints - 1) / 100 + 0.5) * 100;
  grid.StopFreq = grid.Frequency(numPoints - 1);
  for (int k = 0; k < numPoints; ++k) {
    const double x = static_cast<double>(k) / numPoints;
    FillTerms(session->Terms.Forward, k, x, 0.0);
    FillTerms(session->Terms.Reverse, k, x, 0.3);
    session->Terms.IsoFwd0.Set(k, Phasor(1e-4, 5, x));
    session->Terms.IsoRev0.Set(k, Phasor(1e-4, 6, x));
    session->Data.RawS11.Set(k, Phasor(0.3, 7, x));
    session->Data.RawS21.Set(k, Phasor(0.5, 8, x));
    session->Data.RawS12.Set(k, Phasor(0.5, 8.2, x));
    session->Data.RawS22.Set(k, Phasor(0.25, 6, x));
  }
  const char* parameters[] = {"S11", "S21", "S12", "S22"};
  const char* graphs[] = {"LogMag", "Phase", "LinMag", "LogMag"};
  const char* units[] = {"dB", "deg", "U", "dB"};
  for (std::size_t c = 0; c < 4; ++c) {
    session->Channels[c].Parameter = *Named<Parameter>(parameters[c]);
    session->Channels[c].GraphType = *Named<GraphType>(graphs[c]);
    session->Channels[c].Units = *Named<Unit>(units[c]);
  }
  session->Display.DisplaySet = DisplaySet::All;
  session->Cal.CalDataReady = session->Cal.Cal12Term = true;
  return session;
}

void FillStandards(Session& session) {
  StandardsMeasured& s = session.Standards;
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    const double x = static_cast<double>(k) / session.Plan.NumPoints;
    s.CalLoad1.Set(k, Phasor(0.03, 3, x));
    s.CalShort1.Set(k, -Phasor(0.85, 2, x));
    s.CalOpen1.Set(k, Phasor(0.88, 2.1, x));
    s.CalLoad2.Set(k, Phasor(0.03, 3.3, x));
    s.CalShort2.Set(k, -Phasor(0.8, 2.3, x));
    s.CalOpen2.Set(k, Phasor(0.83, 2.4, x));
    s.CalThruRefl1.Set(k, Phasor(0.12, 3.5, x));
    s.CalThruRefl2.Set(k, Phasor(0.12, 3.2, x));
    s.CalDutRefl1.Set(k, Phasor(0.3, 7, x));
    s.CalDutRefl2.Set(k, Phasor(0.25, 6, x));
  }
}

}  // namespace qk::benchmarks
