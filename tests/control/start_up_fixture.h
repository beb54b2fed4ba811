// SPDX-License-Identifier: MIT
// The controller before start-up, with its own install folder.
#pragma once

#include <string>
#include <vector>

#include "control/control_fixture.h"

namespace qk::test {

class StartUp : public ::testing::Test, public SweepingControl {
 protected:
  // The recorded events of windows, boxes and panels in order, without progress.
  std::vector<std::string> Events() {
    std::vector<std::string> events;
    events.swap(fake.Events);
    return events;
  }
};

}  // namespace qk::test
