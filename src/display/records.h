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
  float Scale = 1;  // units per division
  double Reference = 0;
  std::int16_t RefPosition = 5;       // divisions below the top edge
  double XStart = 0, XStep = 0;       // hertz
  float TimeStart = 0, TimeStep = 0;  // ns
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

// The kinds of trace, the index of a graph's trace being graph + kChannels * kind.
enum TraceKind { kDataTrace = 0, kMemoryTrace = 1, kUpperTrace = 2, kLowerTrace = 3 };
inline constexpr int kTraceKinds = 4;

}  // namespace qk
