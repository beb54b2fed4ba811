// SPDX-License-Identifier: MIT
// A seeded random analyser for calibration tests: smooth error boxes at both ports, the standards
// and devices that it measures, all by the textbook's signal flow and std::complex. It knows
// nothing of the program's arithmetic.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <random>

#include "core/session.h"

namespace qk::test {

using Cx = std::complex<double>;
inline constexpr double kPi = 3.14159265358979323846;

inline Cx Of(Complex z) {
  return {z.re, z.im};
}
inline Complex To(Cx z) {
  return {z.real(), z.imag()};
}

// centre + ripple e^(j (phase - 2 pi f delay)), times a turn of its own.
struct Smooth {
  Cx Centre;
  double Ripple = 0, Phase = 0, Delay = 0, Turn = 0;

  Cx operator()(double f) const {
    return (Centre + std::polar(Ripple, Phase - 2 * kPi * f * Delay)) *
           std::polar(1.0, -2 * kPi * f * Turn);
  }
};

// S-parameters at one frequency.
struct TwoPortAt {
  Cx S11, S21, S12, S22;
  Cx Det() const { return S11 * S22 - S12 * S21; }
};

struct DeviceUnderTest {
  Smooth S11, S21, S12, S22;
  TwoPortAt At(double f) const { return {S11(f), S21(f), S12(f), S22(f)}; }
};

// One direction of the analyser.
struct Direction {
  Smooth ED, ERT, ES, ETT, EL;
  // Isolation: Iso0 + Iso1 g1 + Iso2 g2, with the reflections that the two ports look into.
  Smooth Iso0, Iso1, Iso2;
};

struct ErrorBox {
  Direction Forward, Reverse;
};

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : random_(seed) {}
  double Between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  // A smooth quantity of about this size.
  Smooth About(double size, double turn = 0) {
    return {std::polar(size * Between(0.6, 1.0), Between(-kPi, kPi)), size * Between(0.05, 0.25),
            Between(-kPi, kPi), Between(0.1e-9, 0.6e-9), turn * Between(0.5, 1.5)};
  }

 private:
  std::mt19937_64 random_;
};

inline Direction MakeDirection(Dice& dice, double mismatch) {
  return {dice.About(0.08),        dice.About(0.8, 0.8e-9), dice.About(mismatch),
          dice.About(0.7, 1.2e-9), dice.About(mismatch),    dice.About(1e-3),
          dice.About(1e-3),        dice.About(1e-3)};
}

inline ErrorBox MakeErrorBox(std::uint64_t seed, double mismatch = 0.15) {
  Dice dice(seed);
  return {MakeDirection(dice, mismatch), MakeDirection(dice, mismatch)};
}

inline DeviceUnderTest MakeDevice(std::uint64_t seed) {
  Dice dice(seed);
  return {dice.About(0.4, 0.3e-9), dice.About(0.7, 0.5e-9), dice.About(0.5, 0.5e-9),
          dice.About(0.3, 0.2e-9)};
}

// Reflection g behind the one-port error box.
inline Cx MeasuredReflection(const Direction& d, double f, Cx g) {
  return d.ED(f) + d.ERT(f) * g / (1.0 - d.ES(f) * g);
}

struct RawAt {
  Cx S11, S21, S12, S22;
};

// The twelve-term model, with an isolation that depends on what the ports look into.
inline RawAt MeasuredTwoPort(const ErrorBox& box, double f, const TwoPortAt& s) {
  const Direction& a = box.Forward;
  const Direction& b = box.Reverse;
  const Cx det = s.Det();
  const Cx g1 = (s.S11 - a.EL(f) * det) / (1.0 - a.EL(f) * s.S22);
  const Cx g2 = (s.S22 - b.EL(f) * det) / (1.0 - b.EL(f) * s.S11);
  const Cx forward = 1.0 - a.ES(f) * s.S11 - a.EL(f) * s.S22 + a.ES(f) * a.EL(f) * det;
  const Cx reverse = 1.0 - b.ES(f) * s.S22 - b.EL(f) * s.S11 + b.ES(f) * b.EL(f) * det;
  RawAt raw;
  raw.S11 = a.ED(f) + a.ERT(f) * (s.S11 - a.EL(f) * det) / forward;
  raw.S22 = b.ED(f) + b.ERT(f) * (s.S22 - b.EL(f) * det) / reverse;
  raw.S21 = a.Iso0(f) + a.Iso1(f) * g1 + a.Iso2(f) * g2 + a.ETT(f) * s.S21 / forward;
  raw.S12 = b.Iso0(f) + b.Iso1(f) * g1 + b.Iso2(f) * g2 + b.ETT(f) * s.S12 / reverse;
  return raw;
}

// Two reflections, nothing connected between the ports.
inline RawAt MeasuredPair(const ErrorBox& box, double f, Cx g1, Cx g2) {
  return MeasuredTwoPort(box, f, {g1, 0, 0, g2});
}

// ---- standards as a kit describes them -------------------------------------------------------

// Load tables are straight lines over frequency, which a spline follows exactly.
struct LoadLine {
  Cx AtZero, PerHertz;
  Cx operator()(double f) const { return AtZero + f * PerHertz; }
};

inline void GiveLoad(CalKit& kit, const LoadLine& line) {
  kit.KitHasLoad = kit.KitLoadInUse = true;
  for (std::size_t i = 0; i < 101; ++i) {
    const double f = 3e6 + 3.1e7 * static_cast<double>(i);
    const Cx g = line(static_cast<double>(static_cast<float>(f)));
    kit.KitLoadData[0][i] = static_cast<float>(f);
    kit.KitLoadData[1][i] = static_cast<float>(g.real());
    kit.KitLoadData[2][i] = static_cast<float>(g.imag());
  }
}

inline void GiveOffset(CalKit& kit, double metres) {
  kit.KitOffset = static_cast<float>(metres);
  kit.KitDelay = static_cast<float>(metres / kSpeedOfLight);
}

struct KitTruth {
  double DelaySeconds = 0;
  LoadLine Load;  // 0 without load data
  double C0 = 2.5e-15, C1 = 2.9e-25, C2 = -1e-35, C3 = 2.4e-46;

  Cx Offset(double f) const { return std::polar(1.0, -4 * kPi * f * DelaySeconds); }
  Cx OpenAt(double f, double zo = 50) const {
    const double c = C0 + C1 * f + C2 * f * f + C3 * f * f * f;
    const Cx z = 1.0 / Cx(0, 2 * kPi * f * c);
    return (z - zo) / (z + zo) * Offset(f);
  }
  Cx ShortAt(double f) const { return -Offset(f); }
  Cx LoadAt(double f) const { return Load(f) * Offset(f); }
};

inline KitTruth TruthOf(const CalKit& kit, const LoadLine& load = {}) {
  return {static_cast<double>(kit.KitDelay), load, kit.KitC0, kit.KitC1, kit.KitC2, kit.KitC3};
}

// ---- the session side ------------------------------------------------------------------------

inline std::unique_ptr<Session> MakePlan(int numPoints) {
  auto session = MakeSession();
  PlanGrid& grid = session->Plan;
  grid.NumPoints = static_cast<std::int16_t>(numPoints);
  grid.StartFreq = 3e6;
  grid.StepFreq = std::floor(2.997e9 / (numPoints - 1) / 100) * 100;
  grid.StopFreq = grid.Frequency(numPoints - 1);
  return session;
}

inline void SetRaw(Session& session, int k, const RawAt& raw) {
  session.Data.RawS11.Set(k, To(raw.S11));
  session.Data.RawS21.Set(k, To(raw.S21));
  session.Data.RawS12.Set(k, To(raw.S12));
  session.Data.RawS22.Set(k, To(raw.S22));
}

}  // namespace qk::test
