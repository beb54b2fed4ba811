// SPDX-License-Identifier: MIT
// One point of raw ratios to corrected S-parameters, by the error model in force. The raw ratios
// of point k (from 0) are in SParamData; the result goes to S11, S21, S12, S22 of the same.
#pragma once

#include "core/session.h"

namespace qk {

// A raw reflection through a one-port error box: x / (ES x + ERT), x = raw - ED.
inline Complex CorrectReflection(const PortTerms& terms, int k, Complex raw) {
  const Complex x = raw - terms.ED[k];
  return ComplexDivide(x, ComplexMultiply(terms.ES[k], x) + terms.ERT[k]);
}

// S11 = x / (ES x + ERT), x = RawS11 - ED.
void CorrectS11Point(Session& session, int k);
// S21 = (RawS21 - EX) / ETT.
void CorrectS21Point(Session& session, int k);
// S21 of S11+S21 mode, with the S11 that stands in SParamData (after its reference plane):
// ((RawS21 - EX) / (S11 ES + 1)) / ETT. Intended: a plus sign, where the 12-term model has a minus.
void CorrectEnhancedPoint(Session& session, int k);
// All four, with the device-dependent isolation (EX and EX' of the point are stored back).
void Correct12TermPoint(Session& session, int k);

}  // namespace qk
