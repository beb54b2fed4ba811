// SPDX-License-Identifier: MIT
// The uncertainty of a corrected measurement from the residual terms of its calibration and the
// spread of repeated sweeps, following the Guide to the Expression of Uncertainty in Measurement
// (JCGM 100:2008). The residual terms are limits with unknown phase, hence the factor 1/2. Not
// included: linearity of the receiver, cable movement, connectors.
#pragma once

namespace qk {

// Magnitudes (linear, no unit) of the residual errors of a calibration at one point.
struct ResidualSizes {
  double Directivity = 0, SourceMatch = 0, Tracking = 0;  // reflection
  double LoadMatch = 0, TransmissionTracking = 0, Isolation = 0;
};

// Magnitudes of the device's four parameters at one point; 0 if not measured.
struct DeviceSizes {
  double S11 = 0, S21 = 0, S12 = 0, S22 = 0;
};

// Standard deviation s of the complex value of one sweep, and the number of averaged sweeps.
struct Spread {
  double Deviation = 0;
  int Sweeps = 1;
};

inline constexpr double kCoverage = 2;  // k of the expanded uncertainty, about 95 %

// Standard uncertainty u of the reflection S11, linear:
//   u^2 = (D^2 + (T |S11|)^2 + (M |S11|^2)^2 + (L |S21 S12|)^2) / 2 + s^2 / 2N
double UncertaintyOfReflection(const ResidualSizes& r, const DeviceSizes& device, Spread spread);

// Standard uncertainty u of the transmission S21, linear:
//   u^2 / |S21|^2 = (T21^2 + (M S11)^2 + (L S22)^2 + (M L S21 S12)^2 + (X / S21)^2) / 2
//                   + s^2 / (2 N |S21|^2)
double UncertaintyOfTransmission(const ResidualSizes& r, const DeviceSizes& device, Spread spread);

// The band of plus and minus U = kCoverage * u around a magnitude.
struct DecibelBand {
  double Low = 0, High = 0;  // dB; Low is -220 if the magnitude may be 0
};
DecibelBand BandInDb(double magnitude, double u);
// Half the height of that band in dB, as shown in a read-out: 20 log10(1 + U / |S|).
double PlusMinusDb(double magnitude, double u);
// Expanded uncertainty of the phase in degrees, asin(U / |S|); 180 if the phase is undetermined.
double PlusMinusDegrees(double magnitude, double u);

}  // namespace qk
