// SPDX-License-Identifier: MIT
// "Enhancement Set Up": averages, smoothing, dwell, level, the reference plane of the active
// channel's parameter, de-embedding and the system impedance. Changes that need the instrument wait
// for the end of a running sweep.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class EnhancePara : public Form {
 public:
  explicit EnhancePara(Controller& controller);

  void OnOpen() override;
  // After a session file: its averages, and the plane in the units that it names.
  void OnSessionLoaded() override;
  void OnSessionChanged() override;

 private:
  void AddValues();
  void AddPlane();
  void ApplyEnhance();
  void ApplyAverages();
  void ApplySmoothing();
  void ApplyDwell();
  void ApplyPlane();
  void AutoRef();
  void ShowAperture();
  // The plane fields take the plane of the active channel's parameter, in millimetres.
  void ShowPlane();
  void ShowPlaneIn(PlaneUnit unit);
  void PlaneUnitChosen();
  // What the plane fields are to show: the active channel's parameter and its plane.
  std::pair<Parameter, float> ShownPlane() const;

  // enhance_system.cpp
  void AddDeEmbedding();
  void AddSystemZo();
  void OpenSystem();
  void ShowSystem();
  void SwitchDeEmbed();
  void SwitchNetwork(int port);
  // Which file a port's network is of, and whether it is bound to another sweep; empty without one.
  std::string NetworkText(int port) const;
  // The impedance part of Apply. False: Apply ends without a replot.
  bool ApplySystemZo();
  bool ConvertTo(double ohms);
  bool ConvertBack(double ohms);
  // False, after its message and with the conversion off, when the impedance is out of range.
  bool ImpedanceValid(double ohms);

  Controller& controller_;
  Session& session_;
  Host& host_;
  Handle averages_, smoothing_, aperture_, dwell_, level_, measuring_, plane_, planeUnit_;
  std::int16_t averagesSet_ = 1;       // when the session was last looked at
  EntryGroup signal_, planeEntry_;     // dwell and level; the plane and its unit
  std::pair<Parameter, float> shown_;  // by the plane fields
  OptionGroup deEmbed_;
  // What a network was loaded from, and for which points.
  struct Source {
    std::string File;
    PlanGrid Grid;
  };
  std::array<Handle, 2> networks_, files_;  // of port 1 and of port 2
  std::array<Source, 2> sources_;
  Handle convert_, ohms_, match_;
};

}  // namespace qk
