// SPDX-License-Identifier: MIT
// "Limit Lines Set Up": a tab of six segments for each channel, and the switches of limits and
// alarm. The segments stand in the session as they are typed; Apply of a tab makes limits of them,
// Apply & Exit shows them.
#pragma once

#include <array>

#include "control/controller.h"
#include "core/form.h"
#include "core/instrument_limits.h"

namespace qk {

class NewLimitsSet : public Form {
 public:
  explicit NewLimitsSet(Controller& controller);

  void OnOpen() override { ShowFields(); }
  void OnSessionChanged() override { ShowFields(); }

 private:
  struct Tab {
    std::array<std::array<Handle, 4>, kLimitSegments> Fields;  // start, stop, upper, lower
    Handle Show;
  };

  void AddTab(int channel);
  void ShowFields();
  void Apply(int channel);
  void ApplyAndExit();

  Controller& controller_;
  Session& session_;
  Host& host_;
  std::array<Tab, kChannels> tabs_;
  Handle enabled_, alarm_, waiting_;
};

}  // namespace qk
