// SPDX-License-Identifier: MIT
// "Markers Set Up": which markers are shown, which one is active and which one the reference of the
// delta, and the search for peak, minimum and the band around them.
#pragma once

#include <array>
#include <optional>

#include "control/controller.h"
#include "core/form.h"
#include "core/measured_sweep.h"
#include "limits/marker_search.h"

namespace qk {

class MarkersSet : public Form {
 public:
  explicit MarkersSet(Controller& controller);

  void OnOpen() override;
  // A marker was dragged: the active one's position.
  void OnRefresh() override;
  void OnSessionChanged() override;

 private:
  // Two check boxes of which at most one is ticked: the narrow and the wide band.
  struct Bands {
    Handle Narrow, Wide;
    double Db;  // of the narrow band; the wide one is twice as far
    std::optional<double> Chosen() const;
    void Clear() const;
  };

  void AddMarkerRows();
  Bands AddSearch(const char* title, Extreme which, const char* command, const char* caption,
                  std::array<const char*, 2> checks, double db);
  void ShowChannel();
  void ShowSettings();
  void ShowSearched();
  void ShowPosition(int point);
  void ShowMarkerPosition();
  // What the ticks and options of the markers stood for when they were last shown, and on which
  // points of which sweep the markers were set.
  void NoteSettings();
  bool SettingsAreShown() const;
  bool PositionsAreShown() const;
  int ChosenMarker() const;
  int TypedPoint() const;
  // The axis of time traces read as a distance: its first point, and from point to point.
  struct Metres {
    double First, Step;
  };
  Metres MetresOfPoints() const;
  void TakeReference(int index);
  void Apply();
  void Find(Extreme which);

  Controller& controller_;
  Session& session_;
  Host& host_;
  Handle channel_, position_, waiting_;
  OptionGroup markersOn_, unit_;
  std::array<Handle, kMarkers> shown_, reference_, active_;
  Bands peak_, minimum_;
  bool shownOn_ = false;
  std::array<MarkerSettings, kMarkers> shownSettings_{};
  PlanGrid shownGrid_;
};

}  // namespace qk
