// SPDX-License-Identifier: MIT
#include "sim/devices.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "sim/words.h"

namespace qk::sim {

namespace {

class Through : public Device {
 public:
  TwoPort At(double) const override { return {0, 1, 1, 0}; }
  std::string Describe() const override { return "through"; }
};

class Attenuator : public Device {
 public:
  explicit Attenuator(double db) : db_(db), s21_(FromDb(-db)) {}
  TwoPort At(double) const override { return {0, s21_, s21_, 0}; }
  std::string Describe() const override { return "attenuator " + Text(db_) + " dB"; }

 private:
  double db_, s21_;
};

class Line : public Device {
 public:
  explicit Line(double mm) : mm_(mm) {}
  TwoPort At(double f) const override {
    const double metres = mm_ / 1000;
    const double lossDb = 0.3 * metres * std::sqrt(f / 1e9);
    const Complex s21 = Travelled(f, metres / kSpeedOfLight, lossDb);
    return {0, s21, s21, 0};
  }
  std::string Describe() const override { return "line " + Text(mm_) + " mm"; }

 private:
  double mm_;
};

// Chain parameters of a ladder, section by section.
struct Ladder {
  Complex A = 1, B = 0, C = 0, D = 1;
  void Series(Complex z) {
    B += A * z;
    D += C * z;
  }
  void Shunt(Complex y) {
    A += B * y;
    C += D * y;
  }
  TwoPort S() const {
    const Complex b = B / kZ0, c = C * kZ0;
    const Complex sum = A + b + c + D;
    // A ladder is reciprocal: A D - B C is 1, and would be lost to rounding far outside the band.
    return {(A + b - c - D) / sum, 2.0 / sum, 2.0 / sum, (-A + b - c + D) / sum};
  }
};

class Filter : public Device {
 public:
  explicit Filter(double offMHz) : offMHz_(offMHz) {}
  TwoPort At(double f) const override {
    // Low-pass prototype with 0.1 dB ripple; odd sections are shunt, even ones series resonators.
    constexpr std::array<double, 5> kPrototype = {1.1468, 1.3712, 1.9750, 1.3712, 1.1468};
    constexpr double kQ = 180;
    const double low = LowMHz() * 1e6, high = HighMHz() * 1e6;
    const double centre = std::sqrt(low * high);
    const double bandwidth = (high - low) / centre;
    // Band-pass transform with the loss of each resonator: 1 / Q added to the detuning.
    const double x = std::max(f, 1.0) / centre;
    const Complex detuning = Complex(1 / kQ, x - 1 / x) / bandwidth;
    Ladder ladder;
    for (std::size_t i = 0; i < kPrototype.size(); ++i) {
      const Complex element = kPrototype[i] * detuning;
      if (i % 2 == 0)
        ladder.Shunt(element / kZ0);
      else
        ladder.Series(element * kZ0);
    }
    return ladder.S();
  }
  std::string Describe() const override {
    return "band-pass filter " + Text(LowMHz()) + " to " + Text(HighMHz()) + " MHz";
  }

 private:
  double LowMHz() const { return 900 + offMHz_; }
  double HighMHz() const { return 1100 + offMHz_; }

  double offMHz_;
};

class Antenna : public Device {
 public:
  TwoPort At(double f) const override {
    constexpr double kResonance = 868e6, kOhms = 38, kQ = 8;
    const double x = std::max(f, 1.0) / kResonance;
    const Complex z = kOhms * Complex(1, kQ * (x - 1 / x));
    return {(z - kZ0) / (z + kZ0), 0, 0, 0};
  }
  bool HasTwoPorts() const override { return false; }
  std::string Describe() const override { return "antenna 868 MHz"; }
};

class Amplifier : public Device {
 public:
  explicit Amplifier(const AmplifierSettings& settings) : settings_(settings) {
    // Drive at the 1 dB point: the output is 1 dB low there.
    inputP1Dbm_ = settings.OutputP1Dbm + 1 - settings.GainDb;
  }

  TwoPort At(double f) const override {
    const double match = settings_.Matched ? 0 : 1;
    const Complex in = Travelled(f, 0, settings_.InputAttenuationDb);
    const Complex out = Travelled(f, 0, settings_.OutputAttenuationDb);
    return {in * in * std::polar(0.14 * match, -2 * kPi * f * 0.21e-9),
            in * out * FromDb(settings_.GainDb) * Travelled(f, 0.32e-9),
            in * out * std::polar(0.012 * match, 1.1 - 2 * kPi * f * 0.28e-9),
            out * out * std::polar(0.19 * match, 0.4 - 2 * kPi * f * 0.17e-9)};
  }

  TwoPort Driven(double f, double inputDbm) const override {
    TwoPort s = At(f);
    // Amplitude relative to the 1 dB point.
    const double relative = FromDb(inputDbm - settings_.InputAttenuationDb - inputP1Dbm_);
    // Limiter g = (1 + k r^(2p))^(-1/2p) with k such that g is -1 dB at r = 1; p is the knee.
    const double exponent = 2 * settings_.Knee;
    const double k = FromDb(exponent) - 1;
    const double gain = std::pow(1 + k * std::pow(relative, exponent), -1 / exponent);
    // Phase -K u / (1 + u) of the power ratio u; its slope in dB at u = 1 is K ln(10) / 40.
    const double u = relative * relative;
    const double full = settings_.AmToPmDegPerDb * 40 / std::log(10.0);
    s.S21 *= std::polar(gain, -full * u / (1 + u) * kPi / 180);
    return s;
  }

  bool DependsOnDrive() const override { return true; }

  std::string Describe() const override {
    std::string text = "amplifier gain " + Text(settings_.GainDb) + " dB, P1dB " +
                       Text(settings_.OutputP1Dbm) + " dBm, AM to PM " +
                       Text(settings_.AmToPmDegPerDb) + " deg/dB, knee " + Text(settings_.Knee);
    if (settings_.InputAttenuationDb != 0)
      text += ", " + Text(settings_.InputAttenuationDb) + " dB before it";
    if (settings_.OutputAttenuationDb != 0)
      text += ", " + Text(settings_.OutputAttenuationDb) + " dB behind it";
    if (settings_.Matched) text += ", matched";
    return text;
  }

 private:
  AmplifierSettings settings_;
  double inputP1Dbm_ = 0;
};

constexpr std::array<Complex TwoPort::*, 4> kParameters = {&TwoPort::S11, &TwoPort::S21,
                                                           &TwoPort::S12, &TwoPort::S22};

// Measured points, interpolated by natural cubic splines on real and imaginary parts; constant
// beyond the ends.
class MeasuredDevice : public Device {
 public:
  MeasuredDevice(TouchstoneData data, std::string name)
      : data_(std::move(data)), name_(std::move(name)), bends_(data_.Hz.size()) {
    for (Complex TwoPort::*parameter : kParameters) FindBends(parameter);
  }

  TwoPort At(double f) const override {
    const auto& hz = data_.Hz;
    if (f <= hz.front()) return data_.Points.front();
    if (f >= hz.back()) return data_.Points.back();
    const auto above = std::upper_bound(hz.begin(), hz.end(), f);
    const auto i = static_cast<std::size_t>(above - hz.begin());
    const double h = hz[i] - hz[i - 1];
    const double a = (hz[i] - f) / h, b = (f - hz[i - 1]) / h;
    const double bendA = (a * a * a - a) * h * h / 6, bendB = (b * b * b - b) * h * h / 6;
    TwoPort s;
    for (Complex TwoPort::*p : kParameters)
      s.*p = a * data_.Points[i - 1].*p + b * data_.Points[i].*p + bendA * bends_[i - 1].*p +
             bendB * bends_[i].*p;
    return s;
  }

  bool HasTwoPorts() const override { return data_.Ports == 2; }
  std::string Describe() const override { return "device " + name_; }

 private:
  // Second derivatives, zero at both ends: the tridiagonal system of the cubic spline.
  void FindBends(Complex TwoPort::*p) {
    const auto& x = data_.Hz;
    const auto& y = data_.Points;
    const std::size_t n = x.size();
    if (n < 3) return;
    std::vector<double> upper(n, 0.0);
    for (std::size_t i = 1; i + 1 < n; ++i) {
      const double below = x[i] - x[i - 1], whole = x[i + 1] - x[i - 1];
      const double share = below / whole;
      const double pivot = share * upper[i - 1] + 2;
      upper[i] = (share - 1) / pivot;
      const Complex slopes =
          (y[i + 1].*p - y[i].*p) / (x[i + 1] - x[i]) - (y[i].*p - y[i - 1].*p) / below;
      bends_[i].*p = (6.0 * slopes / whole - share * bends_[i - 1].*p) / pivot;
    }
    for (std::size_t i = n - 1; i-- > 1;) bends_[i].*p += upper[i] * bends_[i + 1].*p;
  }

  TouchstoneData data_;
  std::string name_;
  std::vector<TwoPort> bends_;
};

}  // namespace

DevicePtr MakeThrough() {
  return std::make_shared<Through>();
}
DevicePtr MakeAttenuator(double db) {
  return std::make_shared<Attenuator>(db);
}
DevicePtr MakeLine(double mm) {
  return std::make_shared<Line>(mm);
}
DevicePtr MakeFilter(double offMHz) {
  return std::make_shared<Filter>(offMHz);
}
DevicePtr MakeAntenna() {
  return std::make_shared<Antenna>();
}
DevicePtr MakeAmplifier(const AmplifierSettings& settings) {
  return std::make_shared<Amplifier>(settings);
}
DevicePtr MakeMeasured(TouchstoneData data, std::string name) {
  return std::make_shared<MeasuredDevice>(std::move(data), std::move(name));
}

}  // namespace qk::sim
