// SPDX-License-Identifier: MIT
#include "sim/connection.h"

#include <cmath>

#include "sim/words.h"

namespace qk::sim {

namespace {

Complex Capacitor(double f, double farads) {
  const Complex z(0, -1 / (2 * kPi * f * farads));
  return (z - kZ0) / (z + kZ0);
}

}  // namespace

Complex KitOpen(double f) {
  return Capacitor(f, 2.5e-15 + 2.9e-25 * f - 1e-35 * f * f + 2.4e-46 * f * f * f);
}

Complex Termination::Reflection(double f) const {
  const Complex there = AtItsPlane(f);
  if (LineMm == 0 && LineLossDbAt1GHz == 0) return there;
  const double lossDb = 2 * LineLossDbAt1GHz * std::sqrt(f / 1e9);
  return there * std::pow(10.0, -lossDb / 20) * Travelled(f, 2 * LineMm / 1000 / kSpeedOfLight);
}

Complex Termination::AtItsPlane(double f) const {
  const Complex offset = Travelled(f, 2 * OffsetMm / 1000 / kSpeedOfLight);
  switch (What) {
    case Kind::Nothing:
      return 0.998 * Capacitor(f, 3e-14);  // a bare connector: stray capacitance, slight radiation
    case Kind::Open:
      return KitOpen(f) * offset;
    case Kind::Short:
      return -offset;
    case Kind::Load:
      return 0;
    case Kind::Mismatch:
      return std::pow(10.0, -ReturnLossDb / 20);
    case Kind::DevicePort:
      return DutPort == 1 ? Dut->At(f).S11 : Dut->At(f).S22;
  }
  return 0;
}

std::string Termination::Describe() const {
  std::string text = DescribeAtItsPlane();
  if (LineMm != 0 || LineLossDbAt1GHz != 0) {
    text += " behind an air line of " + Text(LineMm) + " mm";
    if (LineLossDbAt1GHz != 0) text += ", " + Text(LineLossDbAt1GHz) + " dB at 1 GHz";
  }
  return text;
}

std::string Termination::DescribeAtItsPlane() const {
  const std::string sex = Male ? "male" : "female";
  switch (What) {
    case Kind::Nothing:
      return "nothing";
    case Kind::Open:
      return "open " + sex + " offset " + Text(OffsetMm) + " mm";
    case Kind::Short:
      return "short " + sex + " offset " + Text(OffsetMm) + " mm";
    case Kind::Load:
      return "load " + sex;
    case Kind::Mismatch:
      return "mismatch " + Text(ReturnLossDb) + " dB " + sex;
    case Kind::DevicePort:
      if (!Dut->HasTwoPorts()) return Dut->Describe();
      return "port " + std::to_string(DutPort) + " of " + Dut->Describe();
  }
  return {};
}

TwoPort Connection::At(double f) const {
  if (Between) return Between->At(f);
  return {Port1.Reflection(f), 0, 0, Port2.Reflection(f)};
}

std::string Connection::Describe() const {
  if (Between) return Between->Describe();
  return "port 1: " + Port1.Describe() + "; port 2: " + Port2.Describe();
}

}  // namespace qk::sim
