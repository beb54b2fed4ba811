// "Enhancement Set Up": averages, smoothing, dwell, level, and the reference plane of the active
// channel's parameter. Changes that need the instrument wait for the end of a running sweep.
#pragma once

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class EnhancePara : public Form {
 public:
  explicit EnhancePara(Controller& controller);

  void OnOpen() override;
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

  Controller& controller_;
  Session& session_;
  Host& host_;
  Handle averages_, smoothing_, aperture_, dwell_, level_, measuring_, plane_, planeUnit_;
};

}  // namespace qk
