// SPDX-License-Identifier: MIT
// The uncertainty of a corrected measurement from the residual terms of its calibration and the
// spread of repeated sweeps, after the Guide to the Expression of Uncertainty in Measurement (JCGM
// 100:2008). The residual terms are limits of unknown phase, hence the factor 1/2. Left out:
// linearity of the receiver, cables that move, connectors.
#pragma once

namespace qk {

// Magnitudes (linear, no unit) of what a calibration leaves at one point.
struct ResidualSizes {
  double Directivity = 0, SourceMatch = 0, Tracking = 0;  // of reflections
  double LoadMatch = 0, TransmissionTracking = 0, Isolation = 0;
};

// Magnitudes of the device's four parameters at one point; 0 for what is not measured.
struct DeviceSizes {
  double S11 = 0, S21 = 0, S12 = 0, S22 = 0;
};

// s of the complex value of one sweep, over so many sweeps that were averaged.
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

// A band of plus and minus U = kCoverage * u about a magnitude.
struct DecibelBand {
  double Low = 0, High = 0;  // dB; Low is -220 where the magnitude may be 0
};
DecibelBand BandInDb(double magnitude, double u);
// Half the height of that band in dB, as a read-out gives it: 20 log10(1 + U / |S|).
double PlusMinusDb(double magnitude, double u);
// Expanded uncertainty of the phase in degrees, asin(U / |S|); 180 where the phase may be anything.
double PlusMinusDegrees(double magnitude, double u);

}  // namespace qk
