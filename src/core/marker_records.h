// SPDX-License-Identifier: MIT
// The markers: four on the traces of each graph, and their settings from "Markers Set Up".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/instrument_limits.h"

namespace qk {

inline constexpr int kMarkers = 4;

enum class MarkerState : std::int16_t { Off, Shown, Active, Reference, Fixed };
enum class MarkerTrace : std::int16_t { Data, Memory };

struct Marker {
  std::int16_t Number = 1;  // 1 to 4
  MarkerState State = MarkerState::Off;
  MarkerTrace Trace = MarkerTrace::Data;
  std::int16_t Point = 0;        // from 1; 0 means the middle of the sweep
  double Value = 0, Value2 = 0;  // trace value when last drawn; fixed for a fixed marker
  std::int32_t X = 0, Y = 0;     // pixel position of the point when last drawn
  std::int32_t LabelY = 0;       // y of the centre of the number label, for the mouse
};

// One row of "Markers Set Up".
struct MarkerSettings {
  bool Shown = false, IsRef = false, IsActive = false;
  std::int16_t Point = 0;
};

struct MarkerRecords {
  std::array<std::array<Marker, kMarkers>, kChannels> OfGraphs{};  // by graph, then marker, from 0
  std::array<MarkerSettings, kMarkers> Settings{};
  std::int16_t AdjustedGraph = 0;  // the graph that "Trace Markers" shows, from 0

  Marker& Of(int graph, int marker) {
    return OfGraphs[static_cast<std::size_t>(graph)][static_cast<std::size_t>(marker)];
  }
  const Marker& Of(int graph, int marker) const {
    return OfGraphs[static_cast<std::size_t>(graph)][static_cast<std::size_t>(marker)];
  }
  MarkerSettings& Set(int marker) { return Settings[static_cast<std::size_t>(marker)]; }
  const MarkerSettings& Set(int marker) const { return Settings[static_cast<std::size_t>(marker)]; }
};

}  // namespace qk
