// SPDX-License-Identifier: MIT
#include "cal/error_terms.h"

#include "cal/correction.h"
#include "cal/kit_tables.h"
#include "numeric/rotation.h"

namespace qk {

namespace {

double Capacitance(const CalKit& kit, double f, CapacitanceFloor floor) {
  constexpr double kFloor = 1e-20;
  const double c = (f * f * kit.KitC2 + (kit.KitC1 * f + kit.KitC0)) + f * f * f * kit.KitC3;
  if (floor == CapacitanceFloor::Below) return c < kFloor ? kFloor : c;
  return c == 0 ? kFloor : c;
}

// Load, short and open as measured at one port.
struct MeasuredPort {
  const ComplexArray& Load;
  const ComplexArray& Short;
  const ComplexArray& Open;
};

// Source match, reflection tracking and directivity of point k from the three standards: ideal open
// gammaOpen, ideal load gammaLoad, the short -1. Intentional: the denominator of ES is that of a
// perfect load, without the terms S g - L g.
void SolveOnePort(PortTerms& terms, int k, const MeasuredPort& port, Complex gammaOpen,
                  Complex gammaLoad) {
  const Complex l = port.Load[k];
  const Complex s = port.Short[k];
  const Complex o = port.Open[k];
  const auto times = [](Complex a, Complex b) { return ComplexMultiply(a, b); };

  const Complex n =
      ((((o - l) - times(l, gammaOpen)) + times(s, gammaOpen)) + times(o, gammaLoad)) -
      times(s, gammaLoad);
  const Complex d =
      ((times(-s, gammaOpen) + times(o, gammaOpen)) - times(times(l, gammaLoad), gammaOpen)) +
      times(times(o, gammaLoad), gammaOpen);
  const Complex es = ComplexDivide(n, d);
  const Complex a = OnePlus(times(OnePlus(-gammaLoad), es)) - times(times(es, es), gammaLoad);
  const Complex ert = ComplexDivide(times(a, l - s), OnePlus(gammaLoad));
  terms.ES.Set(k, es);
  terms.ERT.Set(k, ert);
  terms.ED.Set(k, s + ComplexDivide(ert, OnePlus(es)));
}

// Moves source match and tracking from the plane of the offset standards to the port's plane.
void TurnToReferencePlane(PortTerms& terms, int k, const CalKit& kit, double f) {
  const auto delay =
      static_cast<double>(-2.0f * kit.KitDelay);  // the product in 32 bits, on purpose
  terms.ES.Set(k, Rotate(terms.ES[k], delay, f));
  terms.ERT.Set(k, Rotate(terms.ERT[k], delay, f));
}

// One port of a two-port calibration: the one-port terms, then load match and tracking from the
// through connection.
void SolvePort(PortTerms& terms, int k, const MeasuredPort& port, const ComplexArray& thruRefl,
               const CalKit& kit, LoadTable& load, double f, double systemZo) {
  SolveOnePort(terms, k, port, OpenGamma(kit, f, systemZo), load.At(f));
  TurnToReferencePlane(terms, k, kit, f);
  const Complex el = CorrectReflection(terms, k, thruRefl[k]);
  terms.EL.Set(k, el);
  const Complex tracking = terms.ETT[k] - terms.EX[k];
  terms.ETT.Set(k, ComplexMultiply(tracking, OnePlus(-ComplexMultiply(terms.ES[k], el))));
}

// With a single device sweep, both reflections share it: each gets half of its difference from the
// basic isolation.
void ShareDeviceSweep(ErrorTerms& terms, int k) {
  const auto mean = [](Complex a, Complex b) {
    return Complex{(a.re + b.re) / 2, (a.im + b.im) / 2};
  };
  terms.IsoFwd1.Set(k, mean(terms.IsoFwd1[k], terms.Forward.EX[k]));
  terms.IsoRev1.Set(k, mean(terms.IsoRev1[k], terms.Reverse.EX[k]));
  terms.IsoFwd2.Set(k, terms.IsoFwd1[k]);
  terms.IsoRev2.Set(k, terms.IsoRev1[k]);
}

// The isolation coefficients for the two reflections of the device.
void ExpandIsolation(ErrorTerms& terms, StandardsMeasured& measured, int k) {
  const Complex ex1 = terms.Forward.EX[k];
  const Complex ex2 = terms.Reverse.EX[k];
  const Complex g1 = CorrectReflection(terms.Forward, k, measured.CalDutRefl1[k]);
  const Complex g2 = CorrectReflection(terms.Reverse, k, measured.CalDutRefl2[k]);
  measured.CalDutRefl1.Set(k, g1);
  measured.CalDutRefl2.Set(k, g2);
  terms.IsoFwd1.Set(k, ComplexDivide(terms.IsoFwd1[k] - ex1, g1));
  terms.IsoFwd2.Set(k, ComplexDivide(terms.IsoFwd2[k] - ex1, g2));
  terms.IsoFwd0.Set(k, ex1);
  terms.IsoRev1.Set(k, ComplexDivide(terms.IsoRev1[k] - ex2, g1));
  terms.IsoRev2.Set(k, ComplexDivide(terms.IsoRev2[k] - ex2, g2));
  terms.IsoRev0.Set(k, ex2);
}

// All terms of point k for a through of zero length.
void SolveTwoPorts(Session& session, int k, const CalKit& kit1, LoadTable& load1,
                   const CalKit& kit2, LoadTable& load2) {
  StandardsMeasured& m = session.Standards;
  const double f = session.Plan.Frequency(k);
  const auto zo = static_cast<double>(session.Impedance.SystemZo);
  SolvePort(session.Terms.Forward, k, {m.CalLoad1, m.CalShort1, m.CalOpen1}, m.CalThruRefl1, kit1,
            load1, f, zo);
  SolvePort(session.Terms.Reverse, k, {m.CalLoad2, m.CalShort2, m.CalOpen2}, m.CalThruRefl2, kit2,
            load2, f, zo);
}

// One direction through the through standard t, from port 1 or from port 2: load match, and
// tracking corrected for the standard. Intentional: the tracking also keeps the factor (1 - ES EL)
// of the zero-length through.
void SeeThrough(PortTerms& terms, int k, Complex thruRefl, const ThruStandard& t, bool fromPort1) {
  const auto times = [](Complex a, Complex b) { return ComplexMultiply(a, b); };
  const Complex near = fromPort1 ? t.T11 : t.T22;
  const Complex far = fromPort1 ? t.T22 : t.T11;
  const Complex es = terms.ES[k];
  const Complex ert = terms.ERT[k];
  const Complex d = OnePlus(-times(es, near));
  const Complex directivity = terms.ED[k] + ComplexDivide(times(ert, near), d);
  const Complex out = ComplexDivide(fromPort1 ? t.T21 : t.T12, d);
  const Complex back = ComplexDivide(times(ert, fromPort1 ? t.T12 : t.T21), d);
  const Complex match = ComplexDivide(times(times(es, t.T21), t.T12), d) + far;
  const Complex x = thruRefl - directivity;
  const Complex el = ComplexDivide(x, times(match, x) + times(out, back));
  terms.EL.Set(k, el);
  terms.ETT.Set(k, ComplexDivide(times(terms.ETT[k], OnePlus(-times(el, match))), out));
}

// EX is 0 if the isolation was not measured.
void TakeIsolationOff(PortTerms& terms, int k, bool isoDone) {
  if (!isoDone) terms.EX.Set(k, {});
  terms.ETT.Set(k, terms.ETT[k] - terms.EX[k]);
}

}  // namespace

Complex OpenGamma(const CalKit& kit, double f, double systemZo, CapacitanceFloor floor) {
  const double w = f * 6.283185307;
  const double x = -1 / (w * Capacitance(kit, f, floor));
  return ComplexDivide({-systemZo, x}, {systemZo, x});
}

bool ComputeOnePortTerms(Session& session) {
  const StandardsMeasured& m = session.Standards;
  const CalKit& kit = session.Kit1;
  const MeasuredPort port{m.CalLoad1, m.CalShort1, m.CalOpen1};
  const auto zo = static_cast<double>(session.Impedance.SystemZo);
  LoadTable load(kit);
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    const double f = session.Plan.Frequency(k);
    const Complex open = OpenGamma(kit, f, zo, CapacitanceFloor::ZeroOnly);
    SolveOnePort(session.Terms.Forward, k, port, open, load.At(f));
    TurnToReferencePlane(session.Terms.Forward, k, kit, f);
  }
  session.Cal.CalDataReady = true;
  return load.Good();
}

void ComputeResponseTerms(Session& session, bool isoDone) {
  for (int k = 0; k < session.Plan.NumPoints; ++k)
    TakeIsolationOff(session.Terms.Forward, k, isoDone);
}

void ComputeEnhancedTerms(Session& session, bool isoDone) {
  PortTerms& terms = session.Terms.Forward;
  ComplexArray& thru = session.Standards.CalThruRefl1;
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    TakeIsolationOff(terms, k, isoDone);
    thru.Set(k, CorrectReflection(terms, k, thru[k]));
    // Intentional: plus, where the 12-term kinds have a minus.
    const Complex match = OnePlus(ComplexMultiply(thru[k], terms.ES[k]));
    terms.ETT.Set(k, ComplexDivide(terms.ETT[k], match));
  }
}

bool ComputeInsertableTerms(Session& session) {
  LoadTable load1(session.Kit1);
  LoadTable load2(session.Kit2);
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    SolveTwoPorts(session, k, session.Kit1, load1, session.Kit2, load2);
    if (session.Cal.IsoMethod == IsoMethod::OneSweep) ShareDeviceSweep(session.Terms, k);
    ExpandIsolation(session.Terms, session.Standards, k);
  }
  return load1.Good() && load2.Good();
}

bool ComputeNonInsertableTerms(Session& session) {
  const CalKit& kit = session.Kit1;
  LoadTable load(kit);
  ThruTable thru(kit);
  const StandardsMeasured& m = session.Standards;
  for (int k = 0; k < session.Plan.NumPoints; ++k) {
    SolveTwoPorts(session, k, kit, load, kit, load);
    ExpandIsolation(session.Terms, session.Standards, k);
    const ThruStandard t = thru.At(session.Plan.Frequency(k));
    SeeThrough(session.Terms.Forward, k, m.CalThruRefl1[k], t, true);
    SeeThrough(session.Terms.Reverse, k, m.CalThruRefl2[k], t, false);
  }
  return load.Good() && thru.Good();
}

void ClearIsolationCoefficients(Session& session) {
  ErrorTerms& terms = session.Terms;
  for (ComplexArray* array : {&terms.IsoFwd1, &terms.IsoFwd2, &terms.IsoRev1, &terms.IsoRev2})
    for (int k = 0; k < session.Plan.NumPoints; ++k) array->Set(k, {});
}

}  // namespace qk
