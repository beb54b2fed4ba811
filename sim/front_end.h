// SPDX-License-Identifier: MIT
// The test set between the source, the receivers and the two ports: the twelve terms of both drive
// sides, the reference channel's voltage, and what a device between the ports makes of them.
#pragma once

#include "sim/two_port.h"

namespace qk::sim {

// One drive side: the usual six-term flow graph.
struct SideTerms {
  Complex Directivity, SourceMatch, ReflectionTracking;
  Complex Isolation, LoadMatch, TransmissionTracking;
};

struct FrontEndTerms {
  SideTerms Forward, Reverse;
  // Reference channel in volts at a source level of 0 dBm, per drive side.
  Complex ForwardReference, ReverseReference;
};

FrontEndTerms FrontEndAt(double f);

// Ratios of test to reference channel with the source on port 1 (terms Forward, device as it is) or
// on port 2 (terms Reverse, device turned round by the caller).
struct Ratios {
  Complex Reflection;    // at the driven port
  Complex Transmission;  // at the other port
};
Ratios Measured(const SideTerms& terms, const TwoPort& device);

// Wave that runs into the driven port of the device over the wave that a matched port would take:
// what source match and device make of the drive level.
Complex IncidentWave(const SideTerms& terms, const TwoPort& device);

// The device seen from its other end.
inline TwoPort Turned(const TwoPort& s) {
  return {s.S22, s.S12, s.S21, s.S11};
}

}  // namespace qk::sim
