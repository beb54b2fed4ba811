// SPDX-License-Identifier: MIT
#include "files/session_compare.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "core/cal_arrays.h"
#include "core/characters.h"
#include "core/text.h"
#include "core/vocabulary.h"
#include "trace/memory.h"
#include "trace/reference_plane.h"

namespace qk {

namespace {

std::string Flag(bool on) {
  return on ? "on" : "off";
}
std::string YesNo(bool yes) {
  return yes ? "yes" : "no";
}
std::string MhzText(double hertz) {
  return PlainNumber(hertz / 1e6) + " MHz";
}
std::string GridText(const PlanGrid& plan) {
  return MhzText(plan.StartFreq) + " to " + MhzText(plan.StopFreq) + ", " +
         std::to_string(plan.NumPoints) + " points, step " + MhzText(plan.StepFreq);
}
std::string ColourText(std::uint32_t rgb) {
  constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text = "#";
  for (int shift = 20; shift >= 0; shift -= 4) text += kDigits[(rgb >> shift) & 15u];
  return text;
}

void AddPlan(std::vector<Fact>& facts, const Session& s) {
  facts.push_back({"Sweep", GridText(s.Plan)});
  facts.push_back({"Unit of frequency entry",
                   s.Plan.FreqUnit == 1e6 ? std::string("MHz") : std::string("kHz")});
  facts.push_back({"Sweep set", YesNo(s.Flags.SweepLoaded)});
  facts.push_back({"Level of port 1", std::to_string(s.Plan.Port1Level) + " dBm"});
  facts.push_back({"Level target of port 2", std::to_string(s.Plan.Port2LevelTarget) + " dBm"});
  facts.push_back({"Averaging", Flag(s.Averaging.AverOn)});
  facts.push_back({"Averages", std::to_string(s.Averaging.AveragesSet)});
  facts.push_back({"Smoothing", Flag(s.Averaging.SmoothOn)});
  facts.push_back({"Smoothing aperture", std::to_string(s.Averaging.SmoothingPercent) + " %"});
  facts.push_back({"Long dwell", Flag(s.Flags.DwellOn)});
  facts.push_back({"Points between redraws", std::to_string(s.Display.PlotRefreshPoints)});
}

void AddCalibration(std::vector<Fact>& facts, const Session& s) {
  facts.push_back({"Calibration", CalInForceText(s)});
  facts.push_back({"Calibration data", YesNo(s.Cal.CalDataReady)});
  facts.push_back({"Calibration last applied", std::string(CalKindName(s.Cal.CalKind))});
  facts.push_back({"Calibration interpolated", YesNo(s.Cal.CalInterpolated)});
  facts.push_back({"Calibration level", std::to_string(s.Plan.CalLevel) + " dBm"});
  facts.push_back({"Calibration sweep", GridText(s.Plan.SavedPlan)});
  facts.push_back({"Isolation method", std::to_string(static_cast<int>(s.Cal.IsoMethod))});
  facts.push_back({"Isolation measured", YesNo(s.Cal.IsoSweepDone)});
  int port = 0;
  for (const CalKit* kit : {&s.Kit1, &s.Kit2}) {
    const std::string name = "Kit " + std::to_string(++port) + " ";
    facts.push_back({name + "name", kit->KitName});
    facts.push_back({name + "sex", kit->KitMale ? "male" : "female"});
    facts.push_back({name + "offset", PlainNumber(kit->KitOffset * 1000) + " mm"});
    facts.push_back({name + "delay", PlainNumber(kit->KitDelay) + " s"});
    facts.push_back(
        {name + "open", "C0 " + PlainNumber(kit->KitC0) + ", C1 " + PlainNumber(kit->KitC1) +
                            ", C2 " + PlainNumber(kit->KitC2) + ", C3 " + PlainNumber(kit->KitC3)});
    facts.push_back({name + "load data", YesNo(kit->KitHasLoad)});
    facts.push_back({name + "load data in use", YesNo(kit->KitLoadInUse)});
    if (port == 1) facts.push_back({name + "through data", YesNo(kit->KitHasThru)});
  }
}

void AddEnhancement(std::vector<Fact>& facts, const Session& s) {
  for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
    facts.push_back({"Reference plane " + std::string(NameOf(p)),
                     PlainNumber(static_cast<double>(s.Planes.*PlaneOf(p).Plane) * 1000) + " mm"});
  facts.push_back({"Unit of reference planes", std::string(NameOf(s.Planes.RefPlaneUnits))});
  facts.push_back({"System impedance", PlainNumber(s.Impedance.SystemZo) + " ohm"});
  facts.push_back({"Impedance conversion", Flag(s.Impedance.ZoConvertOn)});
  facts.push_back({"External match", Flag(s.Impedance.ExternalZoMatch)});
  const TimeDomainState& td = s.TimeDomain;
  facts.push_back({"Time axis", PlainNumber(td.TdT1) + " to " + PlainNumber(td.TdT2) + " ns"});
  facts.push_back({"Unit of the time axis", std::string(NameOf(td.Axis))});
  facts.push_back({"Cable", std::string(NameOf(td.Cable)) + ", velocity factor " +
                                PlainNumber(td.VelocityFactor)});
  facts.push_back({"Gate", std::string(NameOf(td.Gate)) + ", " + PlainNumber(td.GateStart) +
                               " to " + PlainNumber(td.GateStop) + " ns"});
  facts.push_back({"Time domain window", std::string(NameOf(td.TdWindow)) + ", order " +
                                             std::to_string(td.TdKaiserOrder)});
  facts.push_back({"Time domain dc term", std::string(NameOf(td.TdDcTerm)) + ", " +
                                              PlainNumber(td.TdResistance) + " ohm"});
}

std::string StoredText(bool valid, const std::optional<Parameter>& of) {
  return valid && of ? std::string(NameOf(*of)) : YesNo(valid);
}

void AddMemories(std::vector<Fact>& facts, const Session& s) {
  const DisplayState& display = s.Display;
  facts.push_back({"Memory math", std::string(NameOf(display.MemoryFunction))});
  facts.push_back({"Memory math in use", YesNo(display.MemoryInUse)});
  facts.push_back({"Hold of the stored trace", std::string(NameOf(display.MemoryHold))});
  facts.push_back({"Memory in use", std::to_string(display.MemoryNumber)});
  for (int m = 1; m <= kMemories; ++m) {
    const std::string name = "Memory " + std::to_string(m) + " ";
    facts.push_back({name + "shown", YesNo(display.MemoryShown[static_cast<std::size_t>(m - 1)])});
    for (int n = 1; n <= kChannels; ++n) {
      const ChannelSettings& channel = s.Channel(n);
      const std::string of = name + "trace of CH" + std::to_string(n);
      if (m == 1) {
        facts.push_back({of, StoredText(channel.MemoryValid, channel.MemoryParameter)});
        continue;
      }
      const StoredTrace& trace = s.MoreMemories[static_cast<std::size_t>(m - 2)]
                                     .OfChannels[static_cast<std::size_t>(n - 1)];
      facts.push_back({of, StoredText(trace.Valid, trace.Of)});
    }
  }
}

void AddChannels(std::vector<Fact>& facts, const Session& s) {
  const DisplayState& display = s.Display;
  facts.push_back({"Displayed channels", std::string(NameOf(display.DisplaySet))});
  facts.push_back({"Active channel", std::to_string(display.ActiveChannel)});
  facts.push_back({"Display mode", std::string(NameOf(display.DisplayMode))});
  facts.push_back({"Limits shown", Flag(s.Limits.Enabled)});
  facts.push_back({"Limit alarm", Flag(s.Limits.Alarm)});
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings& channel = s.Channel(n);
    const std::string name = "CH" + std::to_string(n) + " ";
    const std::string unit = " " + std::string(NameOf(channel.Units));
    facts.push_back({name + "parameter", std::string(NameOf(channel.Parameter))});
    facts.push_back({name + "graph", std::string(NameOf(channel.GraphType))});
    facts.push_back({name + "element", std::string(NameOf(channel.Element))});
    facts.push_back({name + "chart grid", std::string(NameOf(channel.Grid))});
    facts.push_back({name + "gated", YesNo(channel.Gated)});
    facts.push_back({name + "scale", PlainNumber(channel.Scale) + unit + " a division"});
    facts.push_back({name + "reference", PlainNumber(channel.Reference) + unit + ", line " +
                                             std::to_string(channel.RefPosition)});
    facts.push_back({name + "limits ticked", YesNo(s.Limits.Of(n).Show)});
    facts.push_back({name + "limits applied", YesNo(s.Limits.Of(n).Applied)});
    facts.push_back({name + "limits tested", YesNo(channel.LimitsOn)});
  }
}

void AddMarkers(std::vector<Fact>& facts, const Session& s) {
  facts.push_back({"Markers", Flag(s.Display.MarkersOn)});
  for (int m = 0; m < kMarkers; ++m) {
    const MarkerSettings& set = s.Markers.Set(m);
    const std::string name = "Marker " + std::to_string(m + 1);
    std::string text = set.Shown ? "shown" : "off";
    if (set.IsRef) text += ", reference";
    if (set.IsActive) text += ", active";
    facts.push_back({name, text + ", point " + std::to_string(set.Point)});
    for (int n = 1; n <= kChannels; ++n) {
      const Marker& marker = s.Markers.Of(n - 1, m);
      const bool stored = marker.Trace == MarkerTrace::Memory;
      facts.push_back({name + " on CH" + std::to_string(n),
                       "point " + std::to_string(marker.Point) + (stored ? ", stored trace" : "")});
    }
  }
}

void AddPicture(std::vector<Fact>& facts, const Session& s) {
  const std::array<std::pair<const char*, std::uint32_t>, 7> colours{
      {{"background", s.Colour.BackColour},
       {"grid", s.Colour.GridColour},
       {"data", s.Colour.DataColour},
       {"memory", s.Colour.MemoryColour},
       {"text", s.Colour.TextColour},
       {"outlines", s.Colour.OutlineColour},
       {"limits", s.Colour.LimitColour}}};
  for (const auto& [name, rgb] : colours)
    facts.push_back({std::string("Colour of ") + name, ColourText(rgb)});
  facts.push_back({"Print in default colours", YesNo(s.Print.PrintDefaultColours)});
  int line = 0;
  for (const std::string& label : s.Label.GraphicsLabels)
    facts.push_back(
        {line++ == 0 ? "Label" : "Label of before, " + std::to_string(line - 1), label});
  facts.push_back({"Label shown", YesNo(s.Label.Show)});
  facts.push_back({"Label with date", YesNo(s.Label.Date)});
  facts.push_back({"Label with status", YesNo(s.Label.Status)});
}

// The largest difference over the points of a sweep.
struct Largest {
  double Difference = 0;
  int Point = -1;  // from 0; -1: none differ

  void Take(int point, double difference) {
    if (std::isnan(difference)) difference = HUGE_VAL;
    if (difference <= Difference) return;
    Difference = difference;
    Point = point;
  }
  // where: the position of the point, as text.
  template <class Where>
  std::string Line(const std::string& what, const Where& where) const {
    if (Point < 0) return {};
    return what + "\n  largest difference " + PlainNumber(static_cast<float>(Difference)) + " at " +
           where(Point) + "\n";
  }
};

// The points of a plan, as text.
auto InPlan(const PlanGrid& plan) {
  return [&plan](int point) { return MhzText(plan.Frequency(point)); };
}

Largest Between(const ComplexArray& one, const ComplexArray& other, int points) {
  Largest largest;
  for (int i = 0; i < points; ++i)
    largest.Take(i, std::hypot(one[i].re - other[i].re, one[i].im - other[i].im));
  return largest;
}

// The tables of a kit; both kits have the same rows.
template <std::size_t kColumns>
std::string CompareTables(const std::string& what,
                          const std::array<std::array<float, kKitRows>, kColumns>& one,
                          const std::array<std::array<float, kKitRows>, kColumns>& other) {
  Largest largest;
  for (std::size_t row = 0; row < kKitRows; ++row)
    for (std::size_t column = 0; column < kColumns; ++column)
      largest.Take(static_cast<int>(row),
                   std::fabs(static_cast<double>(one[column][row]) - other[column][row]));
  return largest.Line(what, [](int row) { return "row " + std::to_string(row + 1); });
}

std::string CompareKits(const Session& a, const Session& b) {
  return CompareTables("Kit 1 load data", a.Kit1.KitLoadData, b.Kit1.KitLoadData) +
         CompareTables("Kit 1 through data", a.Kit1.KitThruData, b.Kit1.KitThruData) +
         CompareTables("Kit 2 load data", a.Kit2.KitLoadData, b.Kit2.KitLoadData);
}

std::string CompareTerms(const std::string& what, const ErrorTerms& one, const ErrorTerms& other,
                         const PlanGrid& plan) {
  std::string text;
  for (const CalArray& row : CalArrays())
    text += Between(row.In(one), row.In(other), plan.NumPoints)
                .Line(what + " " + std::string(row.Name), InPlan(plan));
  return text;
}

template <class Array>
Largest BetweenTraces(const Array& re, const Array& im, const Array& otherRe, const Array& otherIm,
                      int points) {
  Largest largest;
  for (int i = 0; i < points; ++i) {
    const auto k = static_cast<std::size_t>(i + 1);
    largest.Take(i, std::hypot(re[k] - otherRe[k], im[k] - otherIm[k]));
  }
  return largest;
}

// True if the memory with this number (1 to 4) contains a trace of any channel.
bool HoldsTrace(const Session& session, int number) {
  for (int n = 1; n <= kChannels; ++n)
    if (MemoryOf(session, n, number).Valid) return true;
  return false;
}

std::string CompareBanks(const Session& a, const Session& b) {
  const auto where = InPlan(a.Plan);
  const int points = a.Plan.NumPoints;
  std::string text;
  // A memory that is empty on one side contains values of no measurement.
  const auto set = [&](int number, const Network& one, const Network& other) {
    if (!HoldsTrace(a, number) || !HoldsTrace(b, number)) return;
    for (const Parameter p : {Parameter::S11, Parameter::S21, Parameter::S12, Parameter::S22})
      text += Between(ArrayOf(one, p), ArrayOf(other, p), points)
                  .Line("Memory " + std::to_string(number) + " " + std::string(NameOf(p)), where);
  };
  set(1, a.MemoryZoSet, b.MemoryZoSet);
  for (std::size_t m = 0; m < a.MoreMemories.size(); ++m) {
    const int number = static_cast<int>(m) + 2;
    const MemoryBank &one = a.MoreMemories[m], &other = b.MoreMemories[m];
    for (std::size_t c = 0; c < one.OfChannels.size(); ++c) {
      const StoredTrace &x = one.OfChannels[c], &y = other.OfChannels[c];
      if (!x.Valid || !y.Valid) continue;
      text += BetweenTraces(x.Re, x.Im, y.Re, y.Im, points)
                  .Line("Memory " + std::to_string(number) + " trace of CH" + std::to_string(c + 1),
                        where);
    }
    set(number, one.ZoSet, other.ZoSet);
  }
  return text;
}

std::string CompareArrays(const Session& a, const Session& b) {
  std::string text = CompareTerms("Error term", a.Terms, b.Terms, a.Plan);
  const auto where = InPlan(a.Plan);
  const int points = a.Plan.NumPoints;
  for (int n = 1; n <= kChannels; ++n) {
    const ChannelSettings &one = a.Channel(n), &other = b.Channel(n);
    const std::string channel = "CH" + std::to_string(n) + " ";
    Largest upper, lower;
    for (int i = 0; i < points; ++i) {
      const auto k = static_cast<std::size_t>(i + 1);
      upper.Take(i, std::fabs(static_cast<double>(one.UpperLimit[k] - other.UpperLimit[k])));
      lower.Take(i, std::fabs(static_cast<double>(one.LowerLimit[k] - other.LowerLimit[k])));
    }
    if (one.MemoryValid && other.MemoryValid)
      text += BetweenTraces(one.MemoryRe, one.MemoryIm, other.MemoryRe, other.MemoryIm, points)
                  .Line("Memory 1 trace of CH" + std::to_string(n), where);
    text += upper.Line(channel + "upper limit", where);
    text += lower.Line(channel + "lower limit", where);
  }
  return text + CompareBanks(a, b);
}

bool SameGrid(const PlanGrid& a, const PlanGrid& b) {
  return a.NumPoints == b.NumPoints && a.StartFreq == b.StartFreq && a.StepFreq == b.StepFreq;
}

}  // namespace

std::vector<Fact> SessionFacts(const Session& session) {
  std::vector<Fact> facts;
  AddPlan(facts, session);
  AddCalibration(facts, session);
  AddEnhancement(facts, session);
  AddChannels(facts, session);
  AddMemories(facts, session);
  AddMarkers(facts, session);
  AddPicture(facts, session);
  for (Fact& fact : facts) fact.Value = OnOneLine(std::move(fact.Value));
  return facts;
}

std::string CompareSessions(const Session& first, const std::string& firstName,
                            const Session& second, const std::string& secondName) {
  const std::vector<Fact> one = SessionFacts(first), other = SessionFacts(second);
  std::string differences;
  for (std::size_t i = 0; i < one.size(); ++i)
    if (one[i].Value != other[i].Value)
      differences += one[i].Name + "\n- " + one[i].Value + "\n+ " + other[i].Value + "\n";
  differences += CompareKits(first, second);
  if (SameGrid(first.Plan.SavedPlan, second.Plan.SavedPlan))
    differences += CompareTerms("Calibrated error term", first.SavedTerms, second.SavedTerms,
                                first.Plan.SavedPlan);
  differences +=
      SameGrid(first.Plan, second.Plan)
          ? CompareArrays(first, second)
          : "Error terms, stored traces and limits are not compared: the sweeps differ\n";
  if (differences.empty()) differences = "No differences.\n";
  return "--- " + OnOneLine(firstName) + "\n+++ " + OnOneLine(secondName) + "\n" + differences;
}

}  // namespace qk
