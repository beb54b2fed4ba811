// SPDX-License-Identifier: MIT
// "Marker Table": all markers of all displayed channels in rows, with editable frequencies, the
// band of the last search, and a copy of the table as text on the clipboard.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class MarkerTableForm : public Form {
 public:
  explicit MarkerTableForm(Controller& controller);

  void OnOpen() override { ShowRows(); }
  void OnSessionChanged() override;
  void OnSweepEnded() override { OnSessionChanged(); }

 private:
  struct Row {
    Handle Position, Value;
  };
  struct Reading {
    std::string Position, Value;
  };

  void AddRows();
  void ShowRows();
  void ShowBand();
  bool IsMagnitude(int graph) const;
  std::string EdgesText(int graph) const;
  bool HasValue(int graph, const Marker& marker) const;
  // Empty for a marker that is off, or on a graph that is not displayed.
  std::optional<Reading> Read(int graph, int marker) const;
  void Place(int graph, int marker);
  void Copy();

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::array<std::array<Row, kMarkers>, kChannels> rows_;  // by channel, then marker
  Handle band_;
};

}  // namespace qk
