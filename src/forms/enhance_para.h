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

  // The plane fields, and the active plane of the session, take those of the active channel's
  // parameter, in millimetres.
  void FollowActiveChannel();
  // The level list follows the session.
  void FollowLevel();

 private:
  void ApplyEnhance();
  void ApplyAverages();
  void ApplySmoothing();
  void ApplyDwell();
  void ApplyLevel();
  void ApplyPlane();
  void AutoRef();
  void ShowAperture();
  void ShowPlane();

  Controller& controller_;
  Session& session_;
  Host& host_;
};

}  // namespace qk
