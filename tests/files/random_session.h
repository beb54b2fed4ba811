// SPDX-License-Identifier: MIT
// Sessions with every field of a session file at random, and their comparison bit for bit.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <type_traits>

#include "core/cal_arrays.h"
#include "core/session.h"

namespace qk::test {

class SessionDice {
 public:
  explicit SessionDice(unsigned seed) : engine_(seed) {}

  int Below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  bool Flag() { return Below(2) == 1; }
  std::int16_t From(int low, int high) {
    return static_cast<std::int16_t>(low + Below(high - low + 1));
  }
  // Any finite number of the type, tiny, huge and negative zero among them.
  template <class Float>
  Float Number() {
    if (Below(8) == 0) return Flag() ? Float(0) : -Float(0);
    for (;;) {
      const std::uint64_t bits = engine_();
      Float value;
      std::memcpy(&value, &bits, sizeof value);
      if (std::isfinite(value)) return value;
    }
  }
  double Ordinary() { return std::ldexp(static_cast<double>(engine_() >> 11), -53) * 2 - 1; }
  std::string Text() {
    const char* const kSome[] = {"",    " ",      "Kit 7, \"N\"", "\xC3\xA4\xE2\x84\xA6",
                                 "EOF", "#TRUE#", "1e5",          "calfile02"};
    return kSome[Below(8)];
  }
  template <class Word>
  Word Any() {
    return static_cast<Word>(Below(static_cast<int>(TableOf(Word{}).size())));
  }

 private:
  std::mt19937_64 engine_;
};

inline PlanGrid AnyGrid(SessionDice& dice) {
  constexpr std::int16_t kCounts[] = {51, 101, 201, 401, 801, 1024};
  PlanGrid grid;
  grid.NumPoints = kCounts[dice.Below(6)];
  grid.StartFreq = 3e6 + 100.0 * dice.Below(1000000);
  grid.StepFreq = 100.0 * (1 + dice.Below(20000));
  grid.StopFreq = grid.StartFreq + (grid.NumPoints - 1) * grid.StepFreq;
  return grid;
}

inline void FillPoints(ComplexArray& array, int n, SessionDice& dice) {
  for (int k = 0; k < n; ++k) array.Set(k, {dice.Number<double>(), dice.Number<double>()});
}

inline void AnyKit(CalKit& kit, SessionDice& dice, bool thru) {
  kit.KitName = dice.Text();
  kit.KitMale = dice.Flag();
  kit.KitOffset = dice.Number<float>();
  kit.KitDelay = dice.Number<float>();
  for (double* c : {&kit.KitC0, &kit.KitC1, &kit.KitC2, &kit.KitC3}) *c = dice.Number<double>();
  kit.KitHasLoad = dice.Flag();
  kit.KitLoadInUse = dice.Flag();
  for (auto& row : kit.KitLoadData)
    for (float& item : row) item = dice.Number<float>();
  if (!thru) return;
  kit.KitHasThru = dice.Flag();
  for (auto& row : kit.KitThruData)
    for (float& item : row) item = dice.Number<float>();
}

inline void AnyChannel(ChannelSettings& c, int n, SessionDice& dice) {
  c.Units = static_cast<Unit>(dice.Below(static_cast<int>(Unit::Deg) + 1));
  c.Reference = dice.Number<double>();
  c.RefPosition = dice.From(0, 8);
  c.Scale = dice.Number<double>();
  c.Parameter = dice.Any<Parameter>();
  c.GraphType = static_cast<GraphType>(dice.Below(static_cast<int>(GraphType::Td) + 1));
  for (std::size_t i = 1; i <= static_cast<std::size_t>(n); ++i) {
    for (auto* values : {&c.Value, &c.Value2, &c.MemoryRe, &c.MemoryIm})
      (*values)[i] = dice.Number<double>();
    for (auto* values :
         {&c.UpperLimit, &c.LowerLimit, &c.SmoothValue, &c.SmoothValue2, &c.SmoothWork})
      (*values)[i] = dice.Number<float>();
  }
  c.MemoryValid = dice.Flag();
  c.MemoryParameter.reset();
  if (dice.Flag()) c.MemoryParameter = dice.Any<Parameter>();
  c.LimitsOn = dice.Flag();
}

inline void AnyMarkers(Session& s, SessionDice& dice) {
  for (MarkerSettings& marker : s.Markers.Settings)
    marker = {dice.Flag(), dice.Flag(), dice.Flag(), dice.From(0, 1024)};
  for (int m = 0; m < kMarkers; ++m) {
    const std::int16_t point = dice.From(0, 1024);
    for (int g = 0; g < 4; ++g) {
      s.Markers.Of(g, m).Point = dice.Flag() ? point : dice.From(0, 1024);
      s.Markers.Of(g, m).Trace = dice.Flag() ? MarkerTrace::Memory : MarkerTrace::Data;
    }
  }
  s.Display.MarkersOn = dice.Flag();
}

inline void AnyState(Session& s, SessionDice& dice) {
  static_cast<PlanGrid&>(s.Plan) = AnyGrid(dice);
  s.Plan.SavedPlan = AnyGrid(dice);
  s.Plan.FreqUnit = dice.Flag() ? 1e6 : 1000;
  s.Plan.Port1Level = dice.From(-20, 0);
  s.Plan.Port2LevelTarget = dice.From(-128, 127);
  s.Plan.CalLevel = dice.From(-20, 0);
  s.Averaging = {dice.From(0, 255), dice.From(-300, 255), dice.Flag(), dice.From(0, 10),
                 dice.Flag()};
  CalState& cal = s.Cal;
  cal.CalDataReady = dice.Flag();
  const int kind = dice.Below(5);
  cal.CalS11 = kind == 1;
  cal.CalS21 = kind == 2;
  cal.CalS11S21 = kind == 3;
  cal.Cal12Term = kind == 4;
  cal.CalInterpolated = dice.Flag();
  cal.IsoSweepDone = dice.Flag();
  cal.CalKind = static_cast<SweepMode>(dice.Below(4));
  cal.IsoMethod = static_cast<IsoMethod>(dice.From(0, 2));
  s.Flags.SweepLoaded = dice.Flag();
  s.Flags.DwellOn = dice.Flag();
  DisplayState& display = s.Display;
  display.DisplayMode = dice.Any<DisplayMode>();
  display.DisplaySet = dice.Any<DisplaySet>();
  display.ActiveChannel = dice.From(1, 4);
  for (int n = 1; n <= 4; ++n) s.Channel(n).Active = n == display.ActiveChannel;
  display.PlotRefreshPoints = dice.From(1, 10);
  display.MemoryInUse = dice.Flag();
  display.MemoryFunction = dice.Any<MemoryFunction>();
  display.MemoryHold = dice.Any<MemoryHold>();
}

inline void AnyEnhancement(Session& s, SessionDice& dice) {
  PlaneState& p = s.Planes;
  for (float* value : {&p.ActivePlane, &p.ActiveDelay, &p.PlaneS11, &p.DelayS11, &p.PlaneS21,
                       &p.DelayS21, &p.PlaneS12, &p.DelayS12, &p.PlaneS22, &p.DelayS22})
    *value = dice.Number<float>();
  p.RefPlaneUnits = dice.Any<PlaneUnit>();
  s.Impedance.SystemZo = static_cast<float>(105 + 95 * dice.Ordinary());
  s.Impedance.ZoConvertOn = dice.Flag();
  s.Impedance.ExternalZoMatch = dice.Flag();
  TimeDomainState& td = s.TimeDomain;
  td.TdT1 = dice.Number<double>();
  td.TdT2 = dice.Number<double>();
  td.TdStep = dice.Number<double>();
  td.TdWindow = dice.Any<TdWindow>();
  td.TdKaiserOrder = dice.From(1, 10);
  td.TdDcTerm = dice.Any<TdDcTerm>();
  td.TdResistance = dice.Number<float>();
}

inline void AnyPicture(Session& s, SessionDice& dice) {
  Colours& c = s.Colour;
  for (std::uint32_t* rgb : {&c.BackColour, &c.GridColour, &c.DataColour, &c.MemoryColour,
                             &c.TextColour, &c.OutlineColour, &c.LimitColour})
    *rgb = static_cast<std::uint32_t>(dice.Below(0x1000000));
  for (ChannelLimits& limits : s.Limits.OfChannels) {
    limits.Show = dice.Flag();
    limits.Applied = dice.Flag();
  }
  s.Limits.Enabled = dice.Flag();
  s.Limits.Alarm = dice.Flag();
  s.Label.Date = dice.Flag();
  s.Label.Status = dice.Flag();
  s.Label.Show = dice.Flag();
  for (std::string& text : s.Label.GraphicsLabels) text = dice.Text();
  s.Print.PrintDefaultColours = dice.Flag();
}

// Every field that a session file holds at random; data beyond the plan's points stay.
inline std::unique_ptr<Session> AnySession(unsigned seed) {
  auto session = MakeSession();
  Session& s = *session;
  SessionDice dice(seed);
  AnyState(s, dice);
  AnyEnhancement(s, dice);
  AnyPicture(s, dice);
  AnyMarkers(s, dice);
  AnyKit(s.Kit1, dice, true);
  AnyKit(s.Kit2, dice, false);
  const int n = s.Plan.NumPoints;
  for (ChannelSettings& channel : s.Channels) AnyChannel(channel, n, dice);
  for (const CalArray& array : CalArrays()) {
    FillPoints(array.In(s.Terms), n, dice);
    FillPoints(array.In(s.SavedTerms), s.Plan.SavedPlan.NumPoints, dice);
  }
  for (ComplexArray* array :
       {&s.Data.S11, &s.Data.S21, &s.Data.S12, &s.Data.S22, &s.MemoryZoSet.S11, &s.MemoryZoSet.S21,
        &s.MemoryZoSet.S12, &s.MemoryZoSet.S22})
    FillPoints(*array, n, dice);
  return session;
}

// What the fourth step of the format holds, at random too; one memory of the three stays empty.
inline void Extend(Session& s, unsigned seed) {
  SessionDice dice(seed);
  const int n = s.Plan.NumPoints;
  for (ChannelSettings& c : s.Channels) {
    c.Units = dice.Any<Unit>();
    c.GraphType = dice.Any<GraphType>();
    c.Element = dice.Any<Element>();
    c.Grid = dice.Any<ChartGrid>();
    c.Gated = dice.Flag();
  }
  s.Display.MemoryNumber = dice.From(1, kMemories);
  for (bool& shown : s.Display.MemoryShown) shown = dice.Flag();
  for (std::size_t b = 0; b + 1 < s.MoreMemories.size(); ++b) {
    MemoryBank& bank = s.MoreMemories[b];
    for (StoredTrace& trace : bank.OfChannels) {
      trace.Valid = dice.Flag();
      if (dice.Flag()) trace.Of = dice.Any<Parameter>();
      for (std::size_t k = 1; k <= static_cast<std::size_t>(n); ++k) {
        trace.Re[k] = dice.Number<double>();
        trace.Im[k] = dice.Number<double>();
      }
    }
    bank.OfChannels[b].Valid = true;
    for (ComplexArray* array : {&bank.ZoSet.S11, &bank.ZoSet.S21, &bank.ZoSet.S12, &bank.ZoSet.S22})
      FillPoints(*array, n, dice);
  }
  s.TimeDomain.Axis = TimeAxis::Distance;
  s.TimeDomain.Cable = dice.Any<Cable>();
  s.TimeDomain.VelocityFactor = 0.5 + 0.4 * dice.Ordinary();
  s.TimeDomain.Gate = dice.Any<GateKind>();
  s.TimeDomain.GateStart = 2 * dice.Ordinary();
  s.TimeDomain.GateStop = 20 + 10 * dice.Ordinary();
}

// ---- Bit for bit --------------------------------------------------------------------------------

template <class T>
void ExpectBits(const T& a, const T& b, const char* what) {
  static_assert(std::is_trivially_copyable_v<T>);
  EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0) << what;
}

inline void ExpectSameKit(const CalKit& a, const CalKit& b) {
  EXPECT_EQ(a.KitName, b.KitName);
  EXPECT_EQ(a.KitMale, b.KitMale);
  ExpectBits(a.KitOffset, b.KitOffset, "KitOffset");
  ExpectBits(a.KitDelay, b.KitDelay, "KitDelay");
  ExpectBits(a.KitC0, b.KitC0, "KitC0");
  ExpectBits(a.KitC1, b.KitC1, "KitC1");
  ExpectBits(a.KitC2, b.KitC2, "KitC2");
  ExpectBits(a.KitC3, b.KitC3, "KitC3");
  EXPECT_EQ(a.KitHasLoad, b.KitHasLoad);
  EXPECT_EQ(a.KitLoadInUse, b.KitLoadInUse);
  ExpectBits(a.KitLoadData, b.KitLoadData, "KitLoadData");
  EXPECT_EQ(a.KitHasThru, b.KitHasThru);
  ExpectBits(a.KitThruData, b.KitThruData, "KitThruData");
}

inline void ExpectSameChannel(const ChannelSettings& a, const ChannelSettings& b) {
  EXPECT_EQ(a.Units, b.Units);
  ExpectBits(a.Reference, b.Reference, "Reference");
  EXPECT_EQ(a.RefPosition, b.RefPosition);
  ExpectBits(a.Scale, b.Scale, "Scale");
  EXPECT_EQ(a.Parameter, b.Parameter);
  EXPECT_EQ(a.GraphType, b.GraphType);
  ExpectBits(a.Value, b.Value, "Value");
  ExpectBits(a.Value2, b.Value2, "Value2");
  ExpectBits(a.MemoryRe, b.MemoryRe, "MemoryRe");
  ExpectBits(a.MemoryIm, b.MemoryIm, "MemoryIm");
  ExpectBits(a.UpperLimit, b.UpperLimit, "UpperLimit");
  ExpectBits(a.LowerLimit, b.LowerLimit, "LowerLimit");
  ExpectBits(a.SmoothValue, b.SmoothValue, "SmoothValue");
  ExpectBits(a.SmoothValue2, b.SmoothValue2, "SmoothValue2");
  ExpectBits(a.SmoothWork, b.SmoothWork, "SmoothWork");
  EXPECT_EQ(a.Active, b.Active);
  EXPECT_EQ(a.MemoryValid, b.MemoryValid);
  EXPECT_EQ(a.MemoryParameter, b.MemoryParameter);
  EXPECT_EQ(a.LimitsOn, b.LimitsOn);
  EXPECT_TRUE(static_cast<const ChannelExtension&>(a) == static_cast<const ChannelExtension&>(b));
}

inline void ExpectSameGrid(const PlanGrid& a, const PlanGrid& b) {
  ExpectBits(a.StartFreq, b.StartFreq, "StartFreq");
  ExpectBits(a.StopFreq, b.StopFreq, "StopFreq");
  ExpectBits(a.StepFreq, b.StepFreq, "StepFreq");
  EXPECT_EQ(a.NumPoints, b.NumPoints);
}

inline void ExpectSameState(const Session& a, const Session& b) {
  ExpectSameGrid(a.Plan, b.Plan);
  ExpectSameGrid(a.Plan.SavedPlan, b.Plan.SavedPlan);
  EXPECT_EQ(a.Plan.FreqUnit, b.Plan.FreqUnit);
  EXPECT_EQ(a.Plan.Port1Level, b.Plan.Port1Level);
  EXPECT_EQ(a.Plan.Port2LevelTarget, b.Plan.Port2LevelTarget);
  EXPECT_EQ(a.Plan.CalLevel, b.Plan.CalLevel);
  EXPECT_EQ(a.Averaging.Averages, b.Averaging.Averages);
  EXPECT_EQ(a.Averaging.AveragesSet, b.Averaging.AveragesSet);
  EXPECT_EQ(a.Averaging.AverOn, b.Averaging.AverOn);
  EXPECT_EQ(a.Averaging.SmoothingPercent, b.Averaging.SmoothingPercent);
  EXPECT_EQ(a.Averaging.SmoothOn, b.Averaging.SmoothOn);
  EXPECT_EQ(a.Cal.CalDataReady, b.Cal.CalDataReady);
  EXPECT_EQ(a.Cal.CalS11, b.Cal.CalS11);
  EXPECT_EQ(a.Cal.CalS21, b.Cal.CalS21);
  EXPECT_EQ(a.Cal.CalS11S21, b.Cal.CalS11S21);
  EXPECT_EQ(a.Cal.Cal12Term, b.Cal.Cal12Term);
  EXPECT_EQ(a.Cal.CalInterpolated, b.Cal.CalInterpolated);
  EXPECT_EQ(a.Cal.IsoSweepDone, b.Cal.IsoSweepDone);
  EXPECT_EQ(a.Cal.CalKind, b.Cal.CalKind);
  EXPECT_EQ(a.Cal.IsoMethod, b.Cal.IsoMethod);
  EXPECT_EQ(a.Flags.SweepLoaded, b.Flags.SweepLoaded);
  EXPECT_EQ(a.Flags.DwellOn, b.Flags.DwellOn);
  EXPECT_EQ(a.Display.DisplayMode, b.Display.DisplayMode);
  EXPECT_EQ(a.Display.DisplaySet, b.Display.DisplaySet);
  EXPECT_EQ(a.Display.ActiveChannel, b.Display.ActiveChannel);
  EXPECT_EQ(a.Display.PlotRefreshPoints, b.Display.PlotRefreshPoints);
  EXPECT_EQ(a.Display.MemoryInUse, b.Display.MemoryInUse);
  EXPECT_EQ(a.Display.MemoryFunction, b.Display.MemoryFunction);
  EXPECT_EQ(a.Display.MemoryHold, b.Display.MemoryHold);
  EXPECT_EQ(a.Display.MarkersOn, b.Display.MarkersOn);
}

inline void ExpectSameRest(const Session& a, const Session& b) {
  ExpectBits(a.Colour, b.Colour, "Colour");
  EXPECT_EQ(a.Planes.RefPlaneUnits, b.Planes.RefPlaneUnits);
  const auto planes = [](const PlaneState& p) {
    return std::array{p.ActivePlane, p.ActiveDelay, p.PlaneS11, p.DelayS11, p.PlaneS21,
                      p.DelayS21,    p.PlaneS12,    p.DelayS12, p.PlaneS22, p.DelayS22};
  };
  ExpectBits(planes(a.Planes), planes(b.Planes), "Planes");
  ExpectBits(a.Impedance.SystemZo, b.Impedance.SystemZo, "SystemZo");
  EXPECT_EQ(a.Impedance.ZoConvertOn, b.Impedance.ZoConvertOn);
  EXPECT_EQ(a.Impedance.ExternalZoMatch, b.Impedance.ExternalZoMatch);
  const TimeDomainState &x = a.TimeDomain, &y = b.TimeDomain;
  ExpectBits(std::array{x.TdT1, x.TdT2, x.TdStep}, std::array{y.TdT1, y.TdT2, y.TdStep}, "Td");
  ExpectBits(x.TdResistance, y.TdResistance, "TdResistance");
  EXPECT_EQ(x.TdWindow, y.TdWindow);
  EXPECT_EQ(x.TdKaiserOrder, y.TdKaiserOrder);
  EXPECT_EQ(x.TdDcTerm, y.TdDcTerm);
  EXPECT_TRUE(x.Axis == y.Axis && x.Cable == y.Cable && x.Gate == y.Gate);
  ExpectBits(std::array{x.VelocityFactor, x.GateStart, x.GateStop},
             std::array{y.VelocityFactor, y.GateStart, y.GateStop}, "distance and gate");
  EXPECT_EQ(a.Display.MemoryNumber, b.Display.MemoryNumber);
  EXPECT_EQ(a.Display.MemoryShown, b.Display.MemoryShown);
  for (std::size_t bank = 0; bank < a.MoreMemories.size(); ++bank)
    for (std::size_t c = 0; c < 4; ++c) {
      const StoredTrace &s = a.MoreMemories[bank].OfChannels[c],
                        &t = b.MoreMemories[bank].OfChannels[c];
      EXPECT_TRUE(s.Valid == t.Valid && s.Of == t.Of);
      ExpectBits(s.Re, t.Re, "memory");
      ExpectBits(s.Im, t.Im, "memory");
    }
  for (int m = 0; m < kMarkers; ++m) {
    const MarkerSettings &s = a.Markers.Set(m), &t = b.Markers.Set(m);
    EXPECT_TRUE(s.Shown == t.Shown && s.IsRef == t.IsRef && s.IsActive == t.IsActive);
    EXPECT_EQ(s.Point, t.Point);
    for (int g = 0; g < 4; ++g) {
      EXPECT_EQ(a.Markers.Of(g, m).Point, b.Markers.Of(g, m).Point);
      EXPECT_EQ(a.Markers.Of(g, m).Trace, b.Markers.Of(g, m).Trace);
    }
  }
  for (int n = 1; n <= 4; ++n) {
    EXPECT_EQ(a.Limits.Of(n).Show, b.Limits.Of(n).Show);
    EXPECT_EQ(a.Limits.Of(n).Applied, b.Limits.Of(n).Applied);
  }
  EXPECT_EQ(a.Limits.Enabled, b.Limits.Enabled);
  EXPECT_EQ(a.Limits.Alarm, b.Limits.Alarm);
  EXPECT_EQ(a.Label.GraphicsLabels, b.Label.GraphicsLabels);
  EXPECT_TRUE(a.Label.Date == b.Label.Date && a.Label.Status == b.Label.Status &&
              a.Label.Show == b.Label.Show);
  EXPECT_EQ(a.Print.PrintDefaultColours, b.Print.PrintDefaultColours);
}

// All that a session file holds.
inline void ExpectSame(const Session& a, const Session& b) {
  ExpectSameState(a, b);
  ExpectSameRest(a, b);
  ExpectSameKit(a.Kit1, b.Kit1);
  ExpectSameKit(a.Kit2, b.Kit2);
  for (int n = 1; n <= 4; ++n) ExpectSameChannel(a.Channel(n), b.Channel(n));
  for (const CalArray& array : CalArrays()) {
    ExpectBits(array.In(a.Terms), array.In(b.Terms), "Terms");
    ExpectBits(array.In(a.SavedTerms), array.In(b.SavedTerms), "SavedTerms");
  }
  ExpectBits(a.Data.S11, b.Data.S11, "S11");
  ExpectBits(a.Data.S21, b.Data.S21, "S21");
  ExpectBits(a.Data.S12, b.Data.S12, "S12");
  ExpectBits(a.Data.S22, b.Data.S22, "S22");
  ExpectBits(a.MemoryZoSet, b.MemoryZoSet, "MemoryZoSet");
}

}  // namespace qk::test
