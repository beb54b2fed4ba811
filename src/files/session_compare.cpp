// SPDX-License-Identifier: MIT
#include "files/session_compare.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "core/cal_arrays.h"
#include "core/text.h"
#include "core/vocabulary.h"
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
  facts.push_back({"Calibration", CalStatusText(s.Cal)});
  facts.push_back({"Calibration interpolated", YesNo(s.Cal.CalInterpolated)});
  facts.push_back({"Calibration level", std::to_string(s.Plan.CalLevel) + " dBm"});
  facts.push_back({"Calibration sweep", GridText(s.Plan.SavedPlan)});
  facts.push_back({"Isolation method", std::to_string(static_cast<int>(s.Cal.IsoMethod))});
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
  facts.push_back({"Time domain window", std::string(NameOf(td.TdWindow)) + ", order " +
                                             std::to_string(td.TdKaiserOrder)});
  facts.push_back({"Time domain dc term", std::string(NameOf(td.TdDcTerm)) + ", " +
                                              PlainNumber(td.TdResistance) + " ohm"});
}

void AddChannels(std::vector<Fact>& facts, const Session& s) {
  const DisplayState& display = s.Display;
  facts.push_back({"Displayed channels", std::string(NameOf(display.DisplaySet))});
  facts.push_back({"Active channel", std::to_string(display.ActiveChannel)});
  facts.push_back({"Display mode", std::string(NameOf(display.DisplayMode))});
  facts.push_back({"Memory math", std::string(NameOf(display.MemoryFunction))});
  facts.push_back({"Hold of the stored trace", std::string(NameOf(display.MemoryHold))});
  facts.push_back({"Limits shown", Flag(s.Limits.Enabled)});
  facts.push_back({"Limit alarm", Flag(s.Limits.Alarm)});
  for (int n = 1; n <= 4; ++n) {
    const ChannelSettings& channel = s.Channel(n);
    const std::string name = "CH" + std::to_string(n) + " ";
    const std::string unit = " " + std::string(NameOf(channel.Units));
    facts.push_back({name + "parameter", std::string(NameOf(channel.Parameter))});
    facts.push_back({name + "graph", std::string(NameOf(channel.GraphType))});
    facts.push_back({name + "scale", PlainNumber(channel.Scale) + unit + " a division"});
    facts.push_back({name + "reference", PlainNumber(channel.Reference) + unit + ", line " +
                                             std::to_string(channel.RefPosition)});
    facts.push_back({name + "stored trace", channel.MemoryValid && channel.MemoryParameter
                                                ? std::string(NameOf(*channel.MemoryParameter))
                                                : std::string("none")});
    facts.push_back({name + "limits ticked", YesNo(s.Limits.Of(n).Show)});
  }
  facts.push_back({"Markers", Flag(display.MarkersOn)});
  for (int m = 0; m < kMarkers; ++m) {
    const MarkerSettings& set = s.Markers.Set(m);
    std::string text = set.Shown ? "shown" : "off";
    if (set.IsRef) text += ", reference";
    if (set.IsActive) text += ", active";
    facts.push_back(
        {"Marker " + std::to_string(m + 1), text + ", point " + std::to_string(set.Point)});
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
  facts.push_back({"Label", s.Label.GraphicsLabels.front()});
  facts.push_back({"Label shown", YesNo(s.Label.Show)});
  facts.push_back({"Label with date", YesNo(s.Label.Date)});
  facts.push_back({"Label with status", YesNo(s.Label.Status)});
}

// The largest of a difference over the points of a sweep.
struct Largest {
  double Difference = 0;
  int Point = -1;  // from 0; -1: none differ

  void Take(int point, double difference) {
    if (std::isnan(difference)) difference = HUGE_VAL;
    if (difference <= Difference) return;
    Difference = difference;
    Point = point;
  }
  std::string Line(const std::string& what, const PlanGrid& plan) const {
    if (Point < 0) return {};
    return what + "\n  largest difference " + PlainNumber(static_cast<float>(Difference)) + " at " +
           MhzText(plan.Frequency(Point)) + "\n";
  }
};

std::string CompareArrays(const Session& a, const Session& b) {
  std::string text;
  const int points = a.Plan.NumPoints;
  for (const CalArray& row : CalArrays()) {
    Largest largest;
    const ComplexArray &one = row.In(a.Terms), &other = row.In(b.Terms);
    for (int i = 0; i < points; ++i)
      largest.Take(i, std::hypot(one[i].re - other[i].re, one[i].im - other[i].im));
    text += largest.Line("Error term " + std::string(row.Name), a.Plan);
  }
  for (int n = 1; n <= 4; ++n) {
    const ChannelSettings &one = a.Channel(n), &other = b.Channel(n);
    const std::string channel = "CH" + std::to_string(n) + " ";
    Largest stored, upper, lower;
    for (int i = 0; i < points; ++i) {
      const auto k = static_cast<std::size_t>(i + 1);
      if (one.MemoryValid && other.MemoryValid)
        stored.Take(i, std::hypot(one.MemoryRe[k] - other.MemoryRe[k],
                                  one.MemoryIm[k] - other.MemoryIm[k]));
      upper.Take(i, std::fabs(static_cast<double>(one.UpperLimit[k] - other.UpperLimit[k])));
      lower.Take(i, std::fabs(static_cast<double>(one.LowerLimit[k] - other.LowerLimit[k])));
    }
    text += stored.Line(channel + "stored trace", a.Plan);
    text += upper.Line(channel + "upper limit", a.Plan);
    text += lower.Line(channel + "lower limit", a.Plan);
  }
  return text;
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
  differences +=
      SameGrid(first.Plan, second.Plan)
          ? CompareArrays(first, second)
          : "Error terms, stored traces and limits are not compared: the sweeps differ\n";
  if (differences.empty()) differences = "No differences.\n";
  return "--- " + OnOneLine(firstName) + "\n+++ " + OnOneLine(secondName) + "\n" + differences;
}

}  // namespace qk
