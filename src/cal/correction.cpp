// SPDX-License-Identifier: MIT
#include "cal/correction.h"

namespace qk {

void CorrectS11Point(Session& session, int k) {
  SParamData& data = session.Data;
  data.S11.Set(k, CorrectReflection(session.Terms.Forward, k, data.RawS11[k]));
}

void CorrectS21Point(Session& session, int k) {
  const PortTerms& terms = session.Terms.Forward;
  SParamData& data = session.Data;
  data.S21.Set(k, ComplexDivide(data.RawS21[k] - terms.EX[k], terms.ETT[k]));
}

void CorrectEnhancedPoint(Session& session, int k) {
  const PortTerms& terms = session.Terms.Forward;
  SParamData& data = session.Data;
  const Complex match = OnePlus(ComplexMultiply(data.S11[k], terms.ES[k]));
  data.S21.Set(k, ComplexDivide(ComplexDivide(data.RawS21[k] - terms.EX[k], match), terms.ETT[k]));
}

void Correct12TermPoint(Session& session, int k) {
  SParamData& data = session.Data;
  PortTerms& forward = session.Terms.Forward;
  PortTerms& reverse = session.Terms.Reverse;
  const ErrorTerms& terms = session.Terms;
  const Complex es = forward.ES[k], es2 = reverse.ES[k];
  const Complex el = forward.EL[k], el2 = reverse.EL[k];
  const Complex ert = forward.ERT[k], ert2 = reverse.ERT[k];
  const Complex x = data.RawS11[k] - forward.ED[k];
  const Complex y = data.RawS22[k] - reverse.ED[k];

  // Isolation of the device, from its reflections.
  const Complex g1 = ComplexDivide(x, ComplexMultiply(es, x) + ert);
  const Complex g2 = ComplexDivide(y, ComplexMultiply(es2, y) + ert2);
  const Complex ex = (ComplexMultiply(terms.IsoFwd1[k], g1) + terms.IsoFwd0[k]) +
                     ComplexMultiply(terms.IsoFwd2[k], g2);
  const Complex ex2 = (ComplexMultiply(terms.IsoRev1[k], g1) + terms.IsoRev0[k]) +
                      ComplexMultiply(terms.IsoRev2[k], g2);
  forward.EX.Set(k, ex);
  reverse.EX.Set(k, ex2);

  // Normalised waves and their common denominator.
  const Complex a = ComplexDivide(x, ert);
  const Complex b = ComplexDivide(data.RawS21[k] - ex, forward.ETT[k]);
  const Complex c = ComplexDivide(data.RawS12[k] - ex2, reverse.ETT[k]);
  const Complex d = ComplexDivide(y, ert2);
  const Complex port1 = OnePlus(ComplexMultiply(a, es));
  const Complex port2 = OnePlus(ComplexMultiply(d, es2));
  const Complex bel = ComplexMultiply(b, el);
  const Complex bel2 = ComplexMultiply(b, el2);
  const Complex w = ComplexMultiply(port1, port2) - ComplexMultiply(ComplexMultiply(bel, el2), c);

  data.S21.Set(k, ComplexDivide(ComplexMultiply(b, OnePlus(ComplexMultiply(d, es2 - el))), w));
  data.S11.Set(k, ComplexDivide(ComplexMultiply(a, port2) - ComplexMultiply(bel, c), w));
  data.S12.Set(k, ComplexDivide(ComplexMultiply(c, OnePlus(ComplexMultiply(a, es - el2))), w));
  data.S22.Set(k, ComplexDivide(ComplexMultiply(d, port1) - ComplexMultiply(bel2, c), w));
}

}  // namespace qk
