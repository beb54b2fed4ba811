// The closed vocabularies of the program: what a channel shows and how, each an enum with one
// table. Texts stand in the tables alone; windows, files and the console turn them into enums and
// back at their edge. A row stands at the index of its enumerator, in the order in which windows
// list it and files count it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
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
  Td
};
enum class Unit : std::uint8_t { Ps, Ns, Us, U, MilliU, Db, Deg };
enum class DisplaySet : std::uint8_t { All, One, OneTwo, ThreeFour };
enum class DisplayMode : std::uint8_t { Data, DataAndMemory, MemoryMath };
enum class MemoryFunction : std::uint8_t { None, Plus, Subtract, Divide };
enum class MemoryHold : std::uint8_t { Off, Max, Min };
enum class PlaneUnit : std::uint8_t { Cm, Mm, Ns, Ps };
enum class TdWindow : std::uint8_t { Rect, RaisedCos, KaiserB };
enum class TdDcTerm : std::uint8_t { Auto, Open, Short, Res };

// Units that can stand for each other.
enum class UnitFamily : std::uint8_t { Decibels, Degrees, Delays, Ratios };

struct ParameterRow {
  std::string_view Name;
  bool Reflection;
};
inline constexpr std::array<ParameterRow, 4> kParameters{
    {{"S11", true}, {"S21", false}, {"S12", false}, {"S22", true}}};

struct UnitRow {
  std::string_view Name;
  UnitFamily Family;
  double Size;  // in seconds, or of the plain quantity
};
inline constexpr std::array<UnitRow, 7> kUnits{{{"ps", UnitFamily::Delays, 1e-12},
                                                {"ns", UnitFamily::Delays, 1e-9},
                                                {"us", UnitFamily::Delays, 1e-6},
                                                {"U", UnitFamily::Ratios, 1},
                                                {"mU", UnitFamily::Ratios, 0.001},
                                                {"dB", UnitFamily::Decibels, 1},
                                                {"deg", UnitFamily::Degrees, 1}}};

// What a point becomes on the graph: a quantity of its own, both its coordinates on the chart, the
// delay from the point before, or a sample of the spectrum of a time response.
enum class PointForm : std::uint8_t { Quantity, Chart, Delay, Spectrum };

// A quantity of one complex point, in its plain unit.
using Quantity = double (*)(Complex z);

struct GraphTypeRow {
  std::string_view Name;
  std::optional<UnitFamily> Family;  // nothing: any unit suits
  std::optional<Unit> NaturalUnit;   // what choosing the type brings along
  PointForm Form;
  bool ReflectionOnly;
  bool Smoothed;
  Quantity Formula;  // of PointForm::Quantity
  Quantity Held;     // what the hold of extremes compares; nullptr: it never replaces a point
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

// Meant: standing wave ratio, delay and time traces hold nothing.
inline constexpr std::array<GraphTypeRow, 9> kGraphTypes{
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
     {"TD", UnitFamily::Ratios, Unit::U, PointForm::Spectrum, false, false, nullptr, nullptr}}};

// Which channels are displayed.
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

// Units of a reference plane: a length in metres, or a delay in seconds that light runs.
struct PlaneUnitRow {
  std::string_view Name;
  double Size;
  bool Delay;
};
inline constexpr std::array<PlaneUnitRow, 4> kPlaneUnits{
    {{"cm", 0.01, false}, {"mm", 0.001, false}, {"ns", 1e-9, true}, {"ps", 1e-12, true}}};

// The table of an enum, by any of its values.
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

// RowOf(GraphType::Smith), NameOf(Unit::Db), Named<Parameter>("S21"), NamesOf<Unit>().
template <class Word>
constexpr const auto& RowOf(Word word) {
  return TableOf(word)[static_cast<std::size_t>(word)];
}

template <class Word>
constexpr std::string_view NameOf(Word word) {
  return RowOf(word).Name;
}

// Exact, case included; nothing when no row bears the name.
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
