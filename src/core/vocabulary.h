// SPDX-License-Identifier: MIT
// The closed vocabularies of the program: what a channel shows and how. Each is an enum with one
// table. The texts exist only in these tables; windows, files and the console convert them to and
// from enums at their boundary. The row index equals the enumerator; this is also the order in
// window lists and the number in files.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/instrument_limits.h"
#include "numeric/complex.h"

namespace qk {

enum class Parameter : std::uint8_t { S11, S21, S12, S22 };
enum class GraphType : std::uint8_t {
  LogMag,
  Phase,
  Smith,
  Swr,
  GroupDelay,
  LinMag,
  Real,
  Imag,
  Td,
  ImpedanceMagnitude,
  Resistance,
  Reactance,
  Inductance,
  Capacitance,
  Quality,
  UnwrappedPhase,
  TdImpedance
};
enum class Unit : std::uint8_t {
  Ps,
  Ns,
  Us,
  U,
  MilliU,
  Db,
  Deg,
  MilliOhm,
  Ohm,
  Kilohm,
  Megohm,
  NanoHenry,
  MicroHenry,
  MilliHenry,
  PicoFarad,
  NanoFarad,
  MicroFarad
};
enum class DisplaySet : std::uint8_t { All, One, OneTwo, ThreeFour };
enum class DisplayMode : std::uint8_t { Data, DataAndMemory, MemoryMath };
enum class MemoryFunction : std::uint8_t { None, Plus, Subtract, Divide };
enum class MemoryHold : std::uint8_t { Off, Max, Min };
enum class PlaneUnit : std::uint8_t { Cm, Mm, Ns, Ps };
enum class TdWindow : std::uint8_t { Rect, RaisedCos, KaiserB };
enum class TdDcTerm : std::uint8_t { Auto, Open, Short, Res };
// How the device under test is connected, for impedance: at the end of a port (reflection), or
// between the ports in series or to ground (transmission).
enum class Element : std::uint8_t { Reflection, Series, Shunt };
enum class ChartGrid : std::uint8_t { Impedance, Admittance, Both };
enum class TimeAxis : std::uint8_t { Time, Distance };
enum class Cable : std::uint8_t { Air, Pe, Ptfe, FoamPe80, FoamPe84, FoamPe88, Own };
enum class GateKind : std::uint8_t { Off, Gate, Notch };

// Families of interchangeable units.
enum class UnitFamily : std::uint8_t { Decibels, Degrees, Delays, Ratios, Ohms, Henries, Farads };

struct ParameterRow {
  std::string_view Name;
  bool Reflection;
};
inline constexpr std::array<ParameterRow, 4> kParameters{
    {{"S11", true}, {"S21", false}, {"S12", false}, {"S22", true}}};

struct UnitRow {
  std::string_view Name;
  UnitFamily Family;
  double Size;  // in seconds, or in the plain unit
};
inline constexpr std::array<UnitRow, 17> kUnits{{{"ps", UnitFamily::Delays, 1e-12},
                                                 {"ns", UnitFamily::Delays, 1e-9},
                                                 {"us", UnitFamily::Delays, 1e-6},
                                                 {"U", UnitFamily::Ratios, 1},
                                                 {"mU", UnitFamily::Ratios, 0.001},
                                                 {"dB", UnitFamily::Decibels, 1},
                                                 {"deg", UnitFamily::Degrees, 1},
                                                 {"mohm", UnitFamily::Ohms, 1e-3},
                                                 {"ohm", UnitFamily::Ohms, 1},
                                                 {"kohm", UnitFamily::Ohms, 1e3},
                                                 {"Mohm", UnitFamily::Ohms, 1e6},
                                                 {"nH", UnitFamily::Henries, 1e-9},
                                                 {"uH", UnitFamily::Henries, 1e-6},
                                                 {"mH", UnitFamily::Henries, 1e-3},
                                                 {"pF", UnitFamily::Farads, 1e-12},
                                                 {"nF", UnitFamily::Farads, 1e-9},
                                                 {"uF", UnitFamily::Farads, 1e-6}}};

// How a point is converted for the graph: one quantity, both coordinates on the chart, the delay
// from the previous point, a sample of the spectrum of a time response, a component of the
// corresponding impedance, or the phase unwrapped from the previous point.
enum class PointForm : std::uint8_t { Quantity, Chart, Delay, Spectrum, Component, Unwrapped };

// A quantity of one complex point, in its plain unit.
using Quantity = double (*)(Complex z);
// A quantity of an impedance in ohms at a frequency in hertz, in its plain unit; NaN where it has
// no value.
using ComponentQuantity = double (*)(Complex ohms, double hertz);

struct GraphTypeRow {
  std::string_view Name;
  std::optional<UnitFamily> Family;  // empty: any unit is allowed
  std::optional<Unit> NaturalUnit;   // set when the user chooses the type
  PointForm Form;
  bool ReflectionOnly;
  bool Smoothed;
  Quantity Formula;  // for PointForm::Quantity
  Quantity Held;     // what max/min hold compares; nullptr: never replaces a point
  // For PointForm::Component, and for a time response shown as impedance. The trace has a gap where
  // the formula has no value. nullptr: the type has no gaps.
  ComponentQuantity OfImpedance = nullptr;

  bool HasGaps() const { return OfImpedance != nullptr; }
};

namespace quantity {
inline double Db(Complex z) {
  return MagnitudeDb(z.re, z.im);
}
inline double Degrees(Complex z) {
  return static_cast<double>(PhaseDeg(z.re, z.im));
}
inline double Linear(Complex z) {
  return Magnitude(z.re, z.im);
}
inline double Swr(Complex z) {
  return SwrOf(z.re, z.im);
}
inline double Re(Complex z) {
  return z.re;
}
inline double Im(Complex z) {
  return z.im;
}
}  // namespace quantity

// The impedance that corresponds to a measured S-parameter, and quantities derived from it
// (textbook network theory).
namespace component {
inline constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// value, or NaN if it is not finite.
inline double OrNone(double value) {
  return std::isfinite(value) ? value : kNone;
}

// a / b without a lower bound on |b|: NaN if b is 0.
inline Complex Quotient(Complex a, Complex b) {
  const double d = b.re * b.re + b.im * b.im;
  const Complex q{(a.re * b.re + a.im * b.im) / d, (a.im * b.re - a.re * b.im) / d};
  return std::isfinite(q.re) && std::isfinite(q.im) ? q : Complex{kNone, kNone};
}

// Impedance in ohms, from s measured in a system of zo ohms. Reflection: zo (1 + s) / (1 - s), NaN
// for s = 1. Series element between the ports: 2 zo (1 - s) / s, NaN for s = 0. Shunt element from
// the line to ground: zo s / (2 (1 - s)), NaN for s = 1.
inline Complex ImpedanceOf(Element element, Complex s, double zo) {
  const Complex rest = OnePlus(-s);
  switch (element) {
    case Element::Series:
      return Quotient(2 * zo * rest, s);
    case Element::Shunt:
      return Quotient(zo * s, 2 * rest);
    case Element::Reflection:
      break;
  }
  return Quotient(zo * OnePlus(s), rest);
}

inline double Magnitude(Complex ohms, double /*hertz*/) {
  return OrNone(std::hypot(ohms.re, ohms.im));
}
inline double Resistance(Complex ohms, double /*hertz*/) {
  return OrNone(ohms.re);
}
inline double Reactance(Complex ohms, double /*hertz*/) {
  return OrNone(ohms.im);
}
// X / w; negative for a capacitor.
inline double Inductance(Complex ohms, double hertz) {
  return OrNone(ohms.im / (2 * std::numbers::pi * hertz));
}
// -1 / (w X); negative for an inductor, NaN if X is 0.
inline double Capacitance(Complex ohms, double hertz) {
  return OrNone(-1 / (2 * std::numbers::pi * hertz * ohms.im));
}
// |X| / R; NaN if R is 0.
inline double Quality(Complex ohms, double /*hertz*/) {
  return OrNone(std::fabs(ohms.im) / ohms.re);
}
}  // namespace component

// Intentional: hold is not available for standing wave ratio, delay, unwrapped phase and time
// traces.
inline constexpr std::array<GraphTypeRow, 17> kGraphTypes{
    {{"LogMag", UnitFamily::Decibels, Unit::Db, PointForm::Quantity, false, true, quantity::Db,
      quantity::Db},
     {"Phase", UnitFamily::Degrees, Unit::Deg, PointForm::Quantity, false, true, quantity::Degrees,
      quantity::Degrees},
     {"Smith", {}, {}, PointForm::Chart, true, false, nullptr, quantity::Linear},
     {"SWR", UnitFamily::Ratios, Unit::U, PointForm::Quantity, true, true, quantity::Swr, nullptr},
     {"Group Delay", UnitFamily::Delays, Unit::Ns, PointForm::Delay, false, true, nullptr, nullptr},
     {"LinMag", UnitFamily::Ratios, Unit::U, PointForm::Quantity, false, true, quantity::Linear,
      quantity::Linear},
     {"Real", UnitFamily::Ratios, Unit::U, PointForm::Quantity, false, true, quantity::Re,
      quantity::Re},
     {"Imag", UnitFamily::Ratios, Unit::U, PointForm::Quantity, false, true, quantity::Im,
      quantity::Im},
     {"TD", UnitFamily::Ratios, Unit::U, PointForm::Spectrum, false, false, nullptr, nullptr},
     {"|Z|", UnitFamily::Ohms, Unit::Ohm, PointForm::Component, false, true, nullptr, nullptr,
      component::Magnitude},
     {"R", UnitFamily::Ohms, Unit::Ohm, PointForm::Component, false, true, nullptr, nullptr,
      component::Resistance},
     {"X", UnitFamily::Ohms, Unit::Ohm, PointForm::Component, false, true, nullptr, nullptr,
      component::Reactance},
     {"L", UnitFamily::Henries, Unit::NanoHenry, PointForm::Component, false, true, nullptr,
      nullptr, component::Inductance},
     {"C", UnitFamily::Farads, Unit::PicoFarad, PointForm::Component, false, true, nullptr, nullptr,
      component::Capacitance},
     {"Q", UnitFamily::Ratios, Unit::U, PointForm::Component, false, true, nullptr, nullptr,
      component::Quality},
     {"Unwrapped Phase", UnitFamily::Degrees, Unit::Deg, PointForm::Unwrapped, false, true, nullptr,
      nullptr},
     {"TD Z", UnitFamily::Ohms, Unit::Ohm, PointForm::Spectrum, true, false, nullptr, nullptr,
      component::Resistance}}};

// Sets of displayed channels.
struct DisplaySetRow {
  std::string_view Name;
  int First, Last;  // channels, from 1
};
inline constexpr std::array<DisplaySetRow, 4> kDisplaySets{
    {{"all", 1, kChannels}, {"one", 1, 1}, {"one-two", 1, 2}, {"three-four", 3, 4}}};

struct NameRow {
  std::string_view Name;
};
inline constexpr std::array<NameRow, 3> kDisplayModes{{{"Data"}, {"Data+"}, {"Memory+"}}};
inline constexpr std::array<NameRow, 4> kMemoryFunctions{
    {{""}, {"Plus"}, {"Subtract"}, {"Divide"}}};
inline constexpr std::array<NameRow, 3> kMemoryHolds{{{"Off"}, {"Max"}, {"Min"}}};
inline constexpr std::array<NameRow, 4> kTdDcTerms{{{"Auto"}, {"Open"}, {"Short"}, {"Res"}}};
inline constexpr std::array<NameRow, 3> kTdWindows{{{"Rect"}, {"RaisedCos"}, {"KaiserB"}}};
inline constexpr std::array<NameRow, 3> kElements{{{"Reflection"}, {"Series"}, {"Shunt"}}};
inline constexpr std::array<NameRow, 3> kChartGrids{{{"Impedance"}, {"Admittance"}, {"Both"}}};
inline constexpr std::array<NameRow, 2> kTimeAxes{{{"Time"}, {"Distance"}}};
inline constexpr std::array<NameRow, 3> kGateKinds{{{"Off"}, {"Gate"}, {"Notch"}}};

// Cables by dielectric: velocity factor relative to the speed of light.
struct CableRow {
  std::string_view Name;
  double VelocityFactor;  // 0: entered by the user
};
inline constexpr std::array<CableRow, 7> kCables{{{"Air", 1},
                                                  {"PE", 0.66},
                                                  {"PTFE", 0.695},
                                                  {"Foam PE 0.80", 0.80},
                                                  {"Foam PE 0.84", 0.84},
                                                  {"Foam PE 0.88", 0.88},
                                                  {"Own", 0}}};

// Units of a reference plane: a length in metres, or the delay in seconds of a wave at the speed of
// light.
struct PlaneUnitRow {
  std::string_view Name;
  double Size;
  bool Delay;
};
inline constexpr std::array<PlaneUnitRow, 4> kPlaneUnits{
    {{"cm", 0.01, false}, {"mm", 0.001, false}, {"ns", 1e-9, true}, {"ps", 1e-12, true}}};

// The table of an enum, selected by any of its values.
constexpr const auto& TableOf(Parameter) {
  return kParameters;
}
constexpr const auto& TableOf(GraphType) {
  return kGraphTypes;
}
constexpr const auto& TableOf(Unit) {
  return kUnits;
}
constexpr const auto& TableOf(DisplaySet) {
  return kDisplaySets;
}
constexpr const auto& TableOf(DisplayMode) {
  return kDisplayModes;
}
constexpr const auto& TableOf(MemoryFunction) {
  return kMemoryFunctions;
}
constexpr const auto& TableOf(MemoryHold) {
  return kMemoryHolds;
}
constexpr const auto& TableOf(PlaneUnit) {
  return kPlaneUnits;
}
constexpr const auto& TableOf(TdWindow) {
  return kTdWindows;
}
constexpr const auto& TableOf(TdDcTerm) {
  return kTdDcTerms;
}
constexpr const auto& TableOf(Element) {
  return kElements;
}
constexpr const auto& TableOf(ChartGrid) {
  return kChartGrids;
}
constexpr const auto& TableOf(TimeAxis) {
  return kTimeAxes;
}
constexpr const auto& TableOf(Cable) {
  return kCables;
}
constexpr const auto& TableOf(GateKind) {
  return kGateKinds;
}

// Examples: RowOf(GraphType::Smith), NameOf(Unit::Db), Named<Parameter>("S21"), NamesOf<Unit>().
template <class Word>
constexpr const auto& RowOf(Word word) {
  return TableOf(word)[static_cast<std::size_t>(word)];
}

template <class Word>
constexpr std::string_view NameOf(Word word) {
  return RowOf(word).Name;
}

// Exact match, case-sensitive; empty if no row has the name.
template <class Word>
constexpr std::optional<Word> Named(std::string_view name) {
  const auto& table = TableOf(Word{});
  for (std::size_t i = 0; i < table.size(); ++i)
    if (table[i].Name == name) return static_cast<Word>(i);
  return std::nullopt;
}

template <class Word>
std::vector<std::string> NamesOf() {
  std::vector<std::string> names;
  for (const auto& row : TableOf(Word{})) names.emplace_back(row.Name);
  return names;
}

}  // namespace qk
