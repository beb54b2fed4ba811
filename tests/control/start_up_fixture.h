// SPDX-License-Identifier: MIT
// Control before its start-up, with an install folder of its own.
#pragma once

#include <string>
#include <vector>

#include "control/control_fixture.h"

namespace qk::test {

class StartUp : public ::testing::Test, public SweepingControl {
 protected:
  // Windows, boxes' answers and panels as they came, without progress.
  std::vector<std::string> Events() {
    std::vector<std::string> events;
    events.swap(fake.Events);
    return events;
  }
};

}  // namespace qk::test
