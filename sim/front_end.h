// SPDX-License-Identifier: MIT
// The test set between the source, the receivers and the two ports: the twelve error terms of both
// drive directions, the reference channel's voltage, and the resulting ratios with a device between
// the ports.
#pragma once

#include "sim/two_port.h"

namespace qk::sim {

// One drive direction: the usual six-term flow graph.
struct SideTerms {
  Complex Directivity, SourceMatch, ReflectionTracking;
  Complex Isolation, LoadMatch, TransmissionTracking;
};

struct FrontEndTerms {
  SideTerms Forward, Reverse;
  // Reference channel in volts at a source level of 0 dBm, per drive direction.
  Complex ForwardReference, ReverseReference;
};

FrontEndTerms FrontEndAt(double f);

// Ratios of test to reference channel with the source on port 1 (terms Forward, device as it is) or
// on port 2 (terms Reverse, device reversed by the caller).
struct Ratios {
  Complex Reflection;    // at the driven port
  Complex Transmission;  // at the other port
};
Ratios Measured(const SideTerms& terms, const TwoPort& device);

// The wave incident on the driven port of the device, relative to the wave into a matched port: the
// effect of source match and device on the drive level.
Complex IncidentWave(const SideTerms& terms, const TwoPort& device);

// The device with its ports exchanged.
inline TwoPort Turned(const TwoPort& s) {
  return {s.S22, s.S12, s.S21, s.S11};
}

}  // namespace qk::sim
