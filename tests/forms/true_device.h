// SPDX-License-Identifier: MIT
// A device for the simulated bench, and the error of a measurement of it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <fstream>
#include <functional>
#include <numbers>
#include <string>

#include "simulated_program.h"

namespace qk::test {

using Phasor = std::complex<double>;

inline Phasor PointOf(const ComplexArray& array, int i) {
  return {array[i].re, array[i].im};
}

// The largest difference over the plan, in dB and degrees.
struct Difference {
  double Db = 0;
  double Deg = 0;
};
// expected: the value at a frequency in hertz.
inline Difference Compare(const SimulatedProgram& vna, const ComplexArray& measured,
                          const std::function<Phasor(double)>& expected) {
  Difference worst;
  for (int i = 0; i < vna.session.Plan.NumPoints; ++i) {
    const Phasor ratio = PointOf(measured, i) / expected(vna.session.Plan.Frequency(i));
    worst.Db = std::max(worst.Db, std::abs(20 * std::log10(std::abs(ratio))));
    worst.Deg = std::max(worst.Deg, std::abs(std::arg(ratio)) * 180 / std::numbers::pi);
  }
  return worst;
}

enum : std::size_t { kS11, kS21, kS12, kS22 };

inline Difference Compare(const SimulatedProgram& vna, const ComplexArray& measured,
                          std::size_t parameter) {
  return Compare(vna, measured, [&](double f) { return vna.instrument.Truth(f)[parameter]; });
}

inline void ExpectTrue(const SimulatedProgram& vna, const ComplexArray& measured,
                       std::size_t parameter) {
  const Difference worst = Compare(vna, measured, parameter);
  EXPECT_LT(worst.Db, 0.02) << "parameter " << parameter;
  EXPECT_LT(worst.Deg, 0.2) << "parameter " << parameter;
}

inline void ExpectAllTrue(const SimulatedProgram& vna) {
  const SParamData& data = vna.session.Data;
  ExpectTrue(vna, data.S11, kS11);
  ExpectTrue(vna, data.S21, kS21);
  ExpectTrue(vna, data.S12, kS12);
  ExpectTrue(vna, data.S22, kS22);
}

// A file for the bench: a mismatched, lossy device that differs from side to side.
class DeviceFile {
 public:
  DeviceFile() : path_(folder_.File("device.s2p")) {
    std::ofstream out(path_);
    out << "# MHz S MA R 50\n";
    for (int mhz = 1; mhz <= 3101; mhz += 10) {
      const double turn = mhz / 3100.0 * 360;
      out << mhz << " " << 0.35 << " " << -turn << " " << 0.7 << " " << -2 * turn << " " << 0.4
          << " " << 30 - turn << " " << 0.25 << " " << 90 - turn << "\n";
    }
  }
  const std::string& Path() const { return path_; }

 private:
  ScratchFolder folder_;
  std::string path_;
};

}  // namespace qk::test
