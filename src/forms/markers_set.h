// SPDX-License-Identifier: MIT
// "Markers Set Up": which markers are shown, which one is active and which one is the delta
// reference, and the search for maximum, minimum and the band around them.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"
#include "core/measured_sweep.h"
#include "limits/marker_search.h"

namespace qk {

class MarkersSet : public Form {
 public:
  explicit MarkersSet(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override;
  void OnSessionLoaded() override;

 private:
  // Two check boxes of which at most one is checked: the narrow and the wide band.
  struct Bands {
    Handle Narrow, Wide;
    double Db;  // the narrow band; the wide one is twice that
    std::optional<double> Chosen() const;
    void Clear() const;
  };

  void AddMarkerRows();
  Bands AddSearch(const char* title, Extreme which, const char* command, const char* caption,
                  std::array<const char*, 2> checks, double db);
  void ShowChannel();
  void ShowSettings();
  using Settings = std::array<MarkerSettings, kMarkers>;
  void ShowSearched(const Settings& before);
  void ForgetUndoneBand();
  void ShowPosition(int point);
  void ShowMarkerPosition();
  // The marker positions on the active channel, the set positions, and their sweep.
  struct Place {
    PlanGrid Grid;
    std::array<std::int16_t, kMarkers> Markers{}, Settings{};
  };
  Place ActivePlace() const;
  // True if the position field shows the current positions; false after a drag or with another
  // sweep.
  bool PositionIsShown() const;
  int ChosenMarker() const;
  std::optional<std::string> WaitingText() const;
  int TypedPoint() const;
  // The axis of time traces as a distance: position of the first point, and the step between
  // points.
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
  EntryGroup settings_;  // the check boxes and options of the markers
  Place place_;          // as last written to the position field
  // The markers before the last search of a band: if an undo brings them back, the search no longer
  // applies, and its check boxes are cleared.
  std::optional<Settings> beforeBand_;
};

}  // namespace qk
