// SPDX-License-Identifier: MIT
// The graphs and traces of the picture area as records: the position of a graph and what it shows.
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
  bool HasGaps = false;  // skips points whose value is NaN
  bool IsGated = false;
  ChartGrid Grid = ChartGrid::Impedance;  // for a Smith chart
  float Scale = 1;                        // units per division
  double Reference = 0;
  std::int16_t RefPosition = 5;       // divisions below the top edge
  double XStart = 0, XStep = 0;       // hertz
  float TimeStart = 0, TimeStep = 0;  // ns
  bool IsDistance = false;            // the time axis is shown as a distance:
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

// Optional items that the graphs show.
struct ViewState {
  bool AxisNumbers = false;  // at the divisions, and the channel number next to the title
  bool Remarks = false;      // processing of the trace, missing measurement, verdicts
  bool Uncertainty = false;  // the band that contains the true value, also in read-outs
  bool Spread = false;       // mean and spread of the repeated sweeps

  bool AnyBand() const { return Uncertainty || Spread; }
};

// The limit test result of a channel: the margin of its worst point, in the channel's unit,
// negative if it fails. Not tested: no limits, or nothing measured.
struct LimitVerdict {
  bool Tested = false;
  bool Passed = true;
  double Margin = 0;
  std::int16_t Point = 0;  // from 1
};

// The kinds of trace. A graph's trace has the index graph + kChannels * kind.
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

// The trace kind of memory number (1 to 4).
constexpr TraceKind MemoryTraceOf(int number) {
  return number <= 1 ? kMemoryTrace : static_cast<TraceKind>(kMemory2Trace + number - 2);
}

}  // namespace qk
