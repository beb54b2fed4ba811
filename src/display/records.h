// SPDX-License-Identifier: MIT
// The graphs and traces of the picture area as records: where a graph stands and what it shows.
#pragma once

#include <array>
#include <cstdint>

#include "core/session.h"
#include "display/canvas.h"

namespace qk {

struct GraphRecord {
  std::int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;  // plot rectangle, pixels
  std::int16_t Slot = 0;
  bool IsActive = false, Enabled = false, IsSmith = false, IsTime = false;
  bool HasGaps = false;  // a point whose value is no number is left out
  bool IsGated = false;
  ChartGrid Grid = ChartGrid::Impedance;  // of a Smith chart
  float Scale = 1;                        // units per division
  double Reference = 0;
  std::int16_t RefPosition = 5;       // divisions below the top edge
  double XStart = 0, XStep = 0;       // hertz
  float TimeStart = 0, TimeStep = 0;  // ns
  bool IsDistance = false;            // a time axis read as a distance:
  double MetresStart = 0, MetresStep = 0;
  std::int16_t NumPoints = 0;
  Unit Units = Unit::Db;

  int Width() const { return Right - Left; }
  int Height() const { return Bottom - Top; }
};

struct TraceRecord {
  std::int16_t Count = 0;
  std::int16_t PenWidth = 1;
  std::int16_t PenStyle = 0;
  std::uint32_t Colour = 0;
  bool Shown = false;
  std::array<double, kMaxPoints + 1> Value{}, Value2{};  // from 1
  std::array<CanvasPoint, kMaxPoints + 1> Pixel{};       // from 1
};

// What the graphs show beside what belongs to them.
struct ViewState {
  bool AxisNumbers = false;  // at the divisions, and the channel's number beside the title
  bool Remarks = false;      // what was done to a trace, what is not measured, verdicts
  bool Uncertainty = false;  // the band in which the true value lies, also in read-outs
  bool Spread = false;       // mean and spread of the repeated sweeps

  bool AnyBand() const { return Uncertainty || Spread; }
};

// What a test found of a channel: how far its worst point is from its limit, in the channel's unit,
// below 0 when it fails. Not tested: no limits, or nothing measured.
struct LimitVerdict {
  bool Tested = false;
  bool Passed = true;
  double Margin = 0;
  std::int16_t Point = 0;  // from 1
};

// The kinds of trace, the index of a graph's trace being graph + kChannels * kind.
enum TraceKind {
  kDataTrace = 0,
  kMemoryTrace = 1,
  kUpperTrace = 2,
  kLowerTrace = 3,
  kMemory2Trace = 4,
  kMemory3Trace = 5,
  kMemory4Trace = 6
};
inline constexpr int kTraceKinds = 7;

// The trace of memory number (1 to 4).
constexpr TraceKind MemoryTraceOf(int number) {
  return number <= 1 ? kMemoryTrace : static_cast<TraceKind>(kMemory2Trace + number - 2);
}

}  // namespace qk
