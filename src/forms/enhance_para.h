// SPDX-License-Identifier: MIT
// "Enhancement Set Up": averages, smoothing, dwell, level, the reference plane of the active
// channel's parameter, de-embedding and the system impedance. Changes that need the instrument are
// applied at the end of a running sweep.
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
  // After a session file: shows its averages, and the plane in the file's units.
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
  // Shows the plane of the active channel's parameter in the plane fields, in millimetres.
  void ShowPlane();
  void ShowPlaneIn(PlaneUnit unit);
  void PlaneUnitChosen();
  // The content of the plane fields: the active channel's parameter and its plane.
  std::pair<Parameter, float> ShownPlane() const;

  // enhance_system.cpp
  void AddDeEmbedding();
  void AddSystemZo();
  void OpenSystem();
  void ShowSystem();
  void SwitchDeEmbed();
  void SwitchNetwork(int port);
  // The file of a port's network, and whether it was loaded for another sweep; empty without a
  // network.
  std::string NetworkText(int port) const;
  // The impedance part of Apply. False: Apply ends without replotting.
  bool ApplySystemZo();
  bool ConvertTo(double ohms);
  bool ConvertBack(double ohms);
  // False, after a message and with the conversion switched off, if the impedance is out of range.
  bool ImpedanceValid(double ohms);

  Controller& controller_;
  Session& session_;
  Host& host_;
  Handle averages_, smoothing_, aperture_, dwell_, level_, measuring_, plane_, planeUnit_;
  std::int16_t averagesSet_ = 1;       // when the session was last read
  EntryGroup signal_, planeEntry_;     // dwell and level; the plane and its unit
  EntryGroup numbers_, system_;        // averages and smoothing; the system impedance
  std::pair<Parameter, float> shown_;  // in the plane fields
  OptionGroup deEmbed_;
  // The file of a network, and the points it was loaded for.
  struct Source {
    std::string File;
    PlanGrid Grid;
  };
  std::array<Handle, 2> networks_, files_;  // of port 1 and of port 2
  std::array<Source, 2> sources_;
  Handle convert_, ohms_, match_;
};

}  // namespace qk
