// SPDX-License-Identifier: MIT
// The rows of a session file, item by item, in one table that both writer and reader traverse: each
// function calls io.Line(...) once per line with the fields themselves. The type of a field is its
// type in the file (text, flag, 16-bit or 32-bit whole number, 32-bit or 64-bit float); a word of a
// closed vocabulary is its name in quotes. docs/file-formats.md describes every row for other
// readers; the numbers in comments here are its row numbers.
//
// The format grew in three steps. Files of the first step end before row 57 and those of the second
// before row 60, with the text "EOF" there. A fourth step follows row 62, only in a session that
// uses what it stores. kNeeds is at the position where an older program reads the kind of
// calibration: it makes that program refuse the file and explains why. Therefore the table has four
// parts.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

#include "core/cal_arrays.h"
#include "core/instrument_limits.h"
#include "core/session.h"

namespace qk::session_rows {

inline constexpr std::string_view kCalFileVersion = "calfile02";
inline constexpr std::string_view kNeeds = "needs version 0.2 or later";
inline constexpr std::array<double, 2> kFreqUnits{1e6, 1000};

// ---- Fields with more than a type --------------------------------------------------------------

// A number with bounds that both reader and writer enforce.
template <class T>
struct Within {
  std::string_view Name;
  T& Value;
  double Low, High;
};
template <class T>
Within(std::string_view, T&, double, double) -> Within<T>;

// A number that must be in a list.
template <class T, class List>
struct OneOf {
  std::string_view Name;
  T& Value;
  const List& Choices;
};
template <class T, class List>
OneOf(std::string_view, T&, const List&) -> OneOf<T, List>;

// A frequency in hertz, 32-bit, stored in MHz.
template <class T>
struct InMhz {
  T& Hz;
};
template <class T>
InMhz(T&) -> InMhz<T>;

// A colour 0xRRGGBB, stored as red + 256 green + 65536 blue.
template <class T>
struct ColourNumber {
  T& Rgb;
};
template <class T>
ColourNumber(T&) -> ColourNumber<T>;

// A flag stored as 0 or 1.
template <class T>
struct Ticked {
  T& Flag;
};
template <class T>
Ticked(T&) -> Ticked<T>;

// A word of a closed vocabulary, stored as its index in the list, from 0.
template <class Word>
struct PlaceOf {
  Word& Value;
};
template <class Word>
PlaceOf(Word&) -> PlaceOf<Word>;

// The kind of calibration applied last, stored by name.
template <class Mode>
struct KindName {
  Mode& Value;
};
template <class Mode>
KindName(Mode&) -> KindName<Mode>;

// A flag that follows from an earlier field.
struct Follows {
  std::string_view From;
  bool Flag;
};

// An unused number: written as 0, ignored by the reader.
struct Spare {};

// ---- The rows ----------------------------------------------------------------------------------

// One line of real and imaginary part per array, point by point.
template <class Io, class Arrays>
void PerPoint(Io& io, int numPoints, const Arrays& arrays) {
  for (std::size_t k = 0; k < static_cast<std::size_t>(numPoints) && io.Good(); ++k)
    for (auto* array : arrays) io.Line(array->re[k], array->im[k]);
}

// The same for count error terms starting with index first in CalArrays(), which has the order of
// the file.
template <class Io, class Terms>
void TermsPerPoint(Io& io, int numPoints, Terms& terms, std::size_t first, std::size_t count) {
  std::vector<decltype(&terms.IsoFwd0)> arrays;
  for (const CalArray& row : CalArrays().subspan(first, count)) arrays.push_back(&row.In(terms));
  PerPoint(io, numPoints, arrays);
}

template <class Io, class S>
void PlanAndCalibration(Io& io, S& s) {
  auto& plan = s.Plan;
  auto& cal = s.Cal;
  io.Header(kCalFileVersion);                                          // 1
  io.Line(OneOf{"NumPoints", plan.NumPoints, kPointCounts},            // 2
          OneOf{"FreqUnit", plan.FreqUnit, kFreqUnits},                //
          Within{"Averages", s.Averaging.Averages, 0, kMostAverages},  //
          plan.StartFreq, plan.StopFreq, plan.StepFreq);               //
  io.Grid(plan);                                                       //
  io.Line(cal.CalDataReady);                                           // 3
  io.Line(cal.CalS11);                                                 // 4
  io.Line(cal.CalS21);                                                 // 5
  io.Line(cal.CalS11S21);                                              // 6
  io.Line(cal.Cal12Term);                                              // 7
  io.Require(cal.CalS11 + cal.CalS21 + cal.CalS11S21 + cal.Cal12Term <= 1,
             "more than one kind of calibration is in force");
  io.Line(s.Averaging.AverOn);     // 8
  io.Line(s.Averaging.SmoothOn);   // 9
  io.Needs(kNeeds, s);             // 9a, only in a session with a fourth step
  io.Line(KindName{cal.CalKind});  // 10
}

template <class Io, class S>
void DisplayAndEnhancement(Io& io, S& s) {
  auto& display = s.Display;
  auto& planes = s.Planes;
  auto& td = s.TimeDomain;
  io.Line(display.MemoryInUse);                                                          // 11
  io.Line(display.MemoryFunction);                                                       // 12
  io.Line(s.Impedance.ZoConvertOn);                                                      // 13
  io.Line(display.DisplayMode);                                                          // 14
  io.Line(Follows{"DisplayMode", display.DisplayMode == DisplayMode::MemoryMath});       // 15
  io.Line(Within{"Port1Level", s.Plan.Port1Level, kLowestLevelDbm, kHighestLevelDbm},    // 16
          s.Plan.Port2LevelTarget,                                                       //
          Within{"CalLevel", s.Plan.CalLevel, kLowestLevelDbm, kHighestLevelDbm},        //
          Within{"AveragesSet", s.Averaging.AveragesSet, -32768, kMostAverages},         //
          Within{"PlotRefreshPoints", display.PlotRefreshPoints, 1, kMaxPoints});        //
  io.Line(planes.RefPlaneUnits);                                                         // 17
  io.Line(planes.ActivePlane, planes.ActiveDelay);                                       // 18
  io.Line(planes.PlaneS11, planes.DelayS11);                                             // 19
  io.Line(planes.PlaneS21, planes.DelayS21);                                             // 20
  io.Line(planes.PlaneS22, planes.DelayS22);                                             // 21
  io.Line(planes.PlaneS12, planes.DelayS12);                                             // 22
  io.Line(display.DisplaySet);                                                           // 23
  io.Line(Within{"ActiveChannel", display.ActiveChannel, 1, kChannels},                  // 24
          Within{"SmoothingPercent", s.Averaging.SmoothingPercent, 0, kMostSmoothing});  //
  io.Line(s.Flags.SweepLoaded);                                                          // 25
  io.Line(s.Flags.DwellOn);                                                              // 26
  io.Line(s.Cal.IsoSweepDone);                                                           // 27
  io.Line(td.TdDcTerm);                                                                  // 28
  io.Line(td.TdResistance);                                                              // 29
  io.Line(td.TdWindow);                                                                  // 30
  io.Line(Within{"TdKaiserOrder", td.TdKaiserOrder, 1, 10});                             // 31
}

// Rows 32 to 34 and 47 to 49.
template <class Io, class Kit>
void KitNumbers(Io& io, Kit& kit) {
  io.Line(kit.KitName);
  io.Line(kit.KitMale);
  io.Line(kit.KitOffset, kit.KitDelay, kit.KitC0, kit.KitC1, kit.KitC2, kit.KitC3);
}

// Rows 40 to 42 and 50 to 52: the table is always present, whatever the flags are.
template <class Io, class Kit>
void KitLoad(Io& io, Kit& kit) {
  io.Line(kit.KitLoadInUse);
  io.Line(kit.KitHasLoad);
  auto& load = kit.KitLoadData;
  for (std::size_t i = 0; i < load[0].size() && io.Good(); ++i)
    io.Line(InMhz{load[0][i]}, load[1][i], load[2][i]);
}

// Row 36.
template <class Io, class Channel>
void ChannelRows(Io& io, Channel& channel, int numPoints) {
  io.Line(channel.Units);
  io.Line(channel.Reference, Within{"RefPosition", channel.RefPosition, 0, 8}, channel.Scale);
  io.Line(channel.Parameter);
  io.Line(channel.GraphType);
  io.Line(channel.Active, channel.MemoryValid);
  io.Line(channel.MemoryParameter);
  io.Line(channel.LimitsOn);
  for (std::size_t i = 1; i <= static_cast<std::size_t>(numPoints) && io.Good(); ++i) {
    io.Line(channel.Value[i], channel.Value2[i]);
    io.Line(channel.MemoryRe[i], channel.MemoryIm[i]);
    io.Line(channel.UpperLimit[i], channel.LowerLimit[i]);
    io.Line(channel.SmoothValue[i], channel.SmoothValue2[i]);
    io.Line(channel.SmoothWork[i]);
  }
}

// Rows 37 and 38, four times, and 39.
template <class Io, class S>
void MarkerRows(Io& io, S& s) {
  for (auto& marker : s.Markers.Settings) {
    io.Line(marker.Shown, marker.IsRef, marker.IsActive);
    io.Line(Within{"the marker's point", marker.Point, 0, kMaxPoints});
  }
  io.Line(s.Display.MarkersOn);
}

// The points of one marker on the four graphs as one number, which equals the point if it is the
// same on all: point of graph 1 + 1025 (d2 + 1026 (d3 + 1026 d4)), where d of a graph is 0 if it
// has the point of graph 1, otherwise its own point + 1. So graphs that are not displayed keep
// their points.
inline constexpr int kPlaces = kMaxPoints + 1;  // 0 to 1024
inline constexpr double kLargestPlace =
    static_cast<double>(kPlaces) * (kPlaces + 1) * (kPlaces + 1) * (kPlaces + 1) - 1;

template <class Markers>
double PlaceNumber(const Markers& markers, int m) {
  const int first = markers.Of(0, m).Point;
  double digits = 0;
  for (int g = 3; g >= 1; --g) {
    const int point = markers.Of(g, m).Point;
    digits = digits * (kPlaces + 1) + (point == first ? 0 : point + 1);
  }
  return digits * kPlaces + first;
}

// place must be a whole number from 0 to kLargestPlace.
template <class Markers>
void TakePlaceNumber(Markers& markers, int m, double place) {
  auto rest = static_cast<std::int64_t>(place);
  const auto first = static_cast<std::int16_t>(rest % kPlaces);
  rest /= kPlaces;
  markers.Of(0, m).Point = first;
  for (int g = 1; g <= 3; ++g, rest /= kPlaces + 1) {
    const auto digit = static_cast<std::int16_t>(rest % (kPlaces + 1));
    markers.Of(g, m).Point = digit == 0 ? first : static_cast<std::int16_t>(digit - 1);
  }
}

// The last five items of row 46: the points of the four markers, and which of the sixteen are on
// the stored trace (marker m of graph g, both from 0, is bit 2^(4 g + m)).
template <class Io, class Markers>
void MarkerPlaces(Io& io, Markers& markers) {
  constexpr bool kReads = !std::is_const_v<Markers>;
  for (int m = 0; m < kMarkers; ++m) {
    double place = PlaceNumber(markers, m);
    io.Line(Within{"the marker's place", place, 0, kLargestPlace});
    io.Require(place == static_cast<double>(static_cast<std::int64_t>(place)),
               "the marker's place is not a whole number");
    if constexpr (kReads) TakePlaceNumber(markers, m, place);
  }
  constexpr int kAll = kChannels * kMarkers;
  static_assert(kAll == 16, "the file has one 16-bit number for them");
  std::int32_t onMemory = 0;
  for (int i = 0; i < kAll; ++i)
    if (markers.Of(i / kMarkers, i % kMarkers).Trace == MarkerTrace::Memory) onMemory |= 1 << i;
  io.Line(Within{"the traces of the markers", onMemory, 0, 0xFFFF});
  if constexpr (kReads)
    for (int i = 0; i < kAll; ++i)
      markers.Of(i / kMarkers, i % kMarkers).Trace =
          (onMemory >> i & 1) != 0 ? MarkerTrace::Memory : MarkerTrace::Data;
}

// Rows 45 and 46: other values stored by the windows.
template <class Io, class S>
void WindowRows(Io& io, S& s) {
  io.Line(s.TimeDomain.TdT1);  // 45
  io.Line(s.TimeDomain.TdT2);
  io.Line(s.TimeDomain.TdStep);
  for (int spare = 0; spare < 11; ++spare) io.Line(Spare());

  auto& limits = s.Limits;  // 46
  for (auto& channel : limits.OfChannels) io.Line(Ticked{channel.Show});
  io.Line(Ticked{limits.Enabled});
  io.Line(Ticked{limits.Alarm});
  for (auto& channel : limits.OfChannels) io.Line(Ticked{channel.Applied});
  io.Line(PlaceOf{s.Display.MemoryHold});
  auto method = static_cast<std::int16_t>(s.Cal.IsoMethod);
  io.Line(Within{"IsoMethod", method, 0, 2});
  if constexpr (!std::is_const_v<S>) s.Cal.IsoMethod = static_cast<IsoMethod>(method);
  MarkerPlaces(io, s.Markers);
}

// Colours of row 54.
template <class Io, class Colour>
void ColourRow(Io& io, Colour& colour) {
  io.Line(ColourNumber{colour.BackColour}, ColourNumber{colour.GridColour},
          ColourNumber{colour.DataColour}, ColourNumber{colour.MemoryColour},
          ColourNumber{colour.TextColour}, ColourNumber{colour.OutlineColour},
          ColourNumber{colour.LimitColour});
}

// Rows 55 and 56.
template <class Io, class S>
void LabelRows(Io& io, S& s) {
  io.Line(Ticked{s.Print.PrintDefaultColours}, Ticked{s.Label.Date}, Ticked{s.Label.Status},
          Ticked{s.Label.Show});
  for (auto& text : s.Label.GraphicsLabels) io.Line(text);
}

// Rows 1 to 56.
template <class Io, class S>
void FirstStep(Io& io, S& s) {
  PlanAndCalibration(io, s);
  DisplayAndEnhancement(io, s);
  KitNumbers(io, s.Kit1);  // 32 to 34
  const int n = s.Plan.NumPoints;
  auto& data = s.Data;
  std::vector<decltype(&data.S11)> measured;
  for (const CalArray& row : CalArrays().first(5)) measured.push_back(&row.In(s.Terms));
  for (auto* array : {&data.S11, &data.S22, &data.S21, &data.S12}) measured.push_back(array);
  PerPoint(io, n, measured);                                                 // 35
  for (auto& channel : s.Channels) ChannelRows(io, channel, n);              // 36
  MarkerRows(io, s);                                                         // 37 to 39
  KitLoad(io, s.Kit1);                                                       // 40 to 42
  io.Line(Within{"SystemZo", s.Impedance.SystemZo, kLeastOhms, kMostOhms});  // 43
  io.Line(s.Impedance.ExternalZoMatch);                                      // 44
  WindowRows(io, s);                                                         // 45 and 46
  KitNumbers(io, s.Kit2);                                                    // 47 to 49
  KitLoad(io, s.Kit2);                                                       // 50 to 52
  TermsPerPoint(io, n, s.Terms, 5, 13);                                      // 53
  ColourRow(io, s.Colour);                                                   // 54
  LabelRows(io, s);                                                          // 55 and 56
}

// Rows 57 to 59.
template <class Io, class S>
void SecondStep(Io& io, S& s) {
  io.Line(s.Cal.CalInterpolated);
  auto& plan = s.Plan.SavedPlan;
  io.Line(plan.StartFreq, plan.StopFreq, OneOf{"NumPoints", plan.NumPoints, kPointCounts},
          plan.StepFreq);
  io.Grid(plan);
  TermsPerPoint(io, plan.NumPoints, s.SavedTerms, 0, 18);
}

// Rows 60 to 62; the through table is always present, whatever its flag is.
template <class Io, class S>
void ThirdStep(Io& io, S& s) {
  io.Line(s.Kit1.KitHasThru);
  auto& thru = s.Kit1.KitThruData;
  for (std::size_t i = 0; i < thru[0].size() && io.Good(); ++i)
    io.Line(InMhz{thru[0][i]}, thru[1][i], thru[2][i], thru[3][i], thru[4][i], thru[5][i],
            thru[6][i], thru[7][i], thru[8][i]);
  auto& zo = s.MemoryZoSet;
  PerPoint(io, s.Plan.NumPoints, std::array{&zo.S11, &zo.S21, &zo.S12, &zo.S22});
}

// A stored trace of a channel in memories 2 to 4.
template <class Io, class Trace>
void StoredTraceRow(Io& io, Trace& trace) {
  io.Line(trace.Valid);
  io.Line(trace.Of);
}

// Rows 66: a memory; its arrays only if it is not empty.
template <class Io, class Bank>
void MemoryRows(Io& io, Bank& bank, int numPoints) {
  for (auto& trace : bank.OfChannels) StoredTraceRow(io, trace);
  const bool used = std::any_of(bank.OfChannels.begin(), bank.OfChannels.end(),
                                [](const auto& trace) { return trace.Valid; });
  if (!used) return;
  for (auto& trace : bank.OfChannels)
    for (std::size_t k = 1; k <= static_cast<std::size_t>(numPoints) && io.Good(); ++k)
      io.Line(trace.Re[k], trace.Im[k]);
  auto& zo = bank.ZoSet;
  PerPoint(io, numPoints, std::array{&zo.S11, &zo.S21, &zo.S12, &zo.S22});
}

// Rows 63 to 67, only for a session that NeedsFourthStep.
template <class Io, class S>
void FourthStep(Io& io, S& s) {
  for (auto& channel : s.Channels) {  // 63
    io.Line(channel.Element);
    io.Line(channel.Grid);
    io.Line(channel.Gated);
  }
  auto& display = s.Display;
  io.Line(Within{"the memory in use", display.MemoryNumber, 1, kMemories});  // 64
  for (auto& shown : display.MemoryShown) io.Line(shown);                    // 65
  for (auto& bank : s.MoreMemories) MemoryRows(io, bank, s.Plan.NumPoints);  // 66
  auto& td = s.TimeDomain;
  io.Line(td.Axis);  // 67
  io.Line(td.Cable);
  io.Line(Within{"the velocity factor", td.VelocityFactor, kLeastVelocityFactor, 1});
  io.Line(td.Gate);
  io.Line(Within{"the gate's start", td.GateStart, kFirstGateNs, kLastGateNs},
          Within{"the gate's stop", td.GateStop, kFirstGateNs, kLastGateNs});
}

// True if the session uses something that programs before version 0.2 do not support.
inline bool NeedsFourthStep(const Session& s) {
  const auto plain = [](const ChannelSettings& channel) {
    const ChannelSettings::Extension first;
    return channel.GraphType <= GraphType::Td && channel.Units <= Unit::Deg &&
           static_cast<const ChannelSettings::Extension&>(channel) == first;
  };
  const DisplayState display;
  const TimeDomainState td;
  const auto empty = [](const MemoryBank& bank) {
    return std::none_of(bank.OfChannels.begin(), bank.OfChannels.end(),
                        [](const StoredTrace& trace) { return trace.Valid; });
  };
  return !std::all_of(s.Channels.begin(), s.Channels.end(), plain) ||
         !std::all_of(s.MoreMemories.begin(), s.MoreMemories.end(), empty) ||
         s.Display.MemoryNumber != display.MemoryNumber ||
         s.Display.MemoryShown != display.MemoryShown || s.TimeDomain.Axis != td.Axis ||
         s.TimeDomain.Cable != td.Cable || s.TimeDomain.VelocityFactor != td.VelocityFactor ||
         s.TimeDomain.Gate != td.Gate || s.TimeDomain.GateStart != td.GateStart ||
         s.TimeDomain.GateStop != td.GateStop;
}

}  // namespace qk::session_rows
