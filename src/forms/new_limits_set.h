// SPDX-License-Identifier: MIT
// "Limit Lines Set Up": one tab of six segments per channel, and the switches of limits and alarm.
// The session stores the segments as they are typed; Apply on a tab converts them to limits, Apply
// & Exit shows them.
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
  void OnSessionLoaded() override;

 private:
  struct Tab {
    std::array<std::array<Handle, 4>, kLimitSegments> Fields;  // start, stop, upper, lower
    EntryGroup Entry;  // the fields, which Apply turns into limits
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
