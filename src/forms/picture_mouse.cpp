// SPDX-License-Identifier: MIT
#include "forms/picture_mouse.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/window_names.h"

namespace qk {

namespace {
constexpr int kReach = 10;  // pixels
}  // namespace

PictureMouse::PictureMouse(Controller& controller)
    : controller_(controller), session_(controller.rig().session), host_(controller.rig().host) {}

std::optional<PictureMouse::Hit> PictureMouse::HitAt(int x, int y, MarkerState highest) const {
  controller_.graphs().CatchUp();
  std::optional<Hit> hit;
  for (int graph = 0; graph < kChannels; ++graph) {
    if (!controller_.graphs().Graph(graph).Enabled) continue;
    for (int m = 0; m < kMarkers; ++m) {
      const Marker& marker = session_.Markers.Of(graph, m);
      if (marker.State == MarkerState::Off || marker.State > highest) continue;
      if (std::abs(y - marker.LabelY) < kReach && std::abs(x - marker.X) < kReach)
        hit = Hit{graph, m};
    }
  }
  return hit;
}

void PictureMouse::LeftDown(int x, int y) {
  Up();
  const std::optional<Hit> hit = HitAt(x, y, MarkerState::Reference);
  if (!hit) {
    const Graphs::Spot spot = controller_.graphs().SpotAt({x, y});
    if (spot.Kind == Graphs::SpotKind::ReferenceMark) reference_ = spot.Graph;
    host_.windows.SessionChanged();
    return;
  }
  const double point = session_.Markers.Of(hit->Graph, hit->Marker).Point;
  grabbed_ = Grab{*hit, point, x};
  controller_.graphs().TracesChanged();  // while no marker was dragged, anything may have
  if (session_.Channel(hit->Graph + 1).Active) return;
  SelectActiveChannel(session_, host_.windows, hit->Graph + 1);
  controller_.graphs().RedrawAll(true);
}

// BackgroundWork the graph may have been hidden, or the marker switched off or fixed.
bool PictureMouse::Holds(const Grab& grab) const {
  const MarkerState state = session_.Markers.Of(grab.Graph, grab.Marker).State;
  return controller_.graphs().Graph(grab.Graph).Enabled && state != MarkerState::Off &&
         state != MarkerState::Fixed;
}

void PictureMouse::DragReference(int y) {
  const GraphRecord& graph = controller_.graphs().Graph(*reference_);
  if (!graph.Enabled || graph.IsSmith) return;
  const double line = (y - graph.Top) * 8.0 / std::max(1, graph.Height());
  const int position = static_cast<int>(std::lround(std::clamp(line, 0.0, 8.0)));
  if (position != graph.RefPosition) PlaceReferenceLine(controller_, *reference_ + 1, position);
}

void PictureMouse::Wheel(int x, int y, int steps, bool reference) {
  const Graphs::Spot spot = controller_.graphs().SpotAt({x, y});
  if (spot.Graph < 0 || steps == 0) return;
  constexpr int kManyPoints = 10;
  if (controller_.graphs().Graph(spot.Graph).IsSmith)
    return StepMarker(controller_, steps * (reference ? kManyPoints : 1));
  if (reference)
    ShiftReference(controller_, spot.Graph + 1, steps);
  else
    StepScale(controller_, spot.Graph + 1, -steps);
}

bool PictureMouse::OnMarker(int x, int y) const {
  return session_.Display.MarkersOn && HitAt(x, y, MarkerState::Fixed).has_value();
}

PictureMouse::Grip PictureMouse::GripAt(int x, int y) const {
  if (session_.Display.MarkersOn && HitAt(x, y, MarkerState::Reference)) return Grip::Marker;
  switch (controller_.graphs().SpotAt({x, y}).Kind) {
    case Graphs::SpotKind::ReferenceMark:
      return Grip::ReferenceMark;
    case Graphs::SpotKind::Title:
    case Graphs::SpotKind::Scale:
    case Graphs::SpotKind::Reference:
      return Grip::SetUp;
    case Graphs::SpotKind::Badge:
      return Grip::Badge;
    default:
      return Grip::None;
  }
}

void PictureMouse::LeftMove(int x, int y) {
  if (reference_) return DragReference(y);
  if (!grabbed_ || !Holds(*grabbed_)) return;
  Graphs& graphs = controller_.graphs();
  const GraphRecord& graph = graphs.Graph(grabbed_->Graph);
  const double steps = std::max(1, graph.NumPoints - 1);
  if (graph.IsSmith)
    grabbed_->Point += (x - grabbed_->LastX) / (std::max(1, graph.Height()) / steps);
  else
    grabbed_->Point = (x - graph.Left) / (std::max(1, graph.Width()) / steps) + 1;
  grabbed_->Point = std::clamp<double>(grabbed_->Point, 1, graph.NumPoints);
  grabbed_->LastX = x;
  MoveMarker(session_, grabbed_->Marker, grabbed_->Point);
  graphs.RedrawMarkers();
  MarkersChanged(host_.windows);
}

void PictureMouse::RightDown(int x, int y) {
  if (!session_.Display.MarkersOn) return;
  const std::optional<Hit> hit = HitAt(x, y, MarkerState::Fixed);
  if (!hit) return;
  AdjustMarkersOf(session_, host_.windows, hit->Graph);
  host_.windows.Show(window::kAdjMarkers);
}

}  // namespace qk
