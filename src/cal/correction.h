// SPDX-License-Identifier: MIT
// Corrects one point of raw ratios to S-parameters with the active error model. The raw ratios of
// point k (from 0) are in SParamData; the result goes to S11, S21, S12, S22 of the same record.
#pragma once

#include "core/session.h"

namespace qk {

// Corrects a raw reflection with a one-port error box: x / (ES x + ERT), x = raw - ED.
inline Complex CorrectReflection(const PortTerms& terms, int k, Complex raw) {
  const Complex x = raw - terms.ED[k];
  return ComplexDivide(x, ComplexMultiply(terms.ES[k], x) + terms.ERT[k]);
}

// S11 = x / (ES x + ERT), x = RawS11 - ED.
void CorrectS11Point(Session& session, int k);
// S21 = (RawS21 - EX) / ETT.
void CorrectS21Point(Session& session, int k);
// S21 in S11+S21 mode, with the S11 in SParamData (after its reference plane): ((RawS21 - EX) /
// (S11 ES + 1)) / ETT. Intentional: a plus sign, where the 12-term model has a minus.
void CorrectEnhancedPoint(Session& session, int k);
// All four parameters, with the device-dependent isolation (stores EX and EX' of the point).
void Correct12TermPoint(Session& session, int k);

}  // namespace qk
