// SPDX-License-Identifier: MIT
// The program with the calibration window open. The scripted instrument has no sweep data, so every
// standard here ends in "No Response": enough for captions, flags and messages.
#pragma once

#include <initializer_list>
#include <string>

#include "support/program_fixture.h"

namespace qk::test {

struct CalFixture : ScriptedProgram {
  CalFixture() {
    session.Flags.SweepLoaded = true;
    session.Kit1.KitName = "Left";
    session.Kit2.KitName = "Right";
    OpenCalibration();
  }
  std::string Captions() {
    std::string all;
    for (const char* button : {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"})
      all += At(std::string("Calibration.") + button).Caption + ";";
    return all;
  }
  // Enabled standards, and Text5 when the second kit is used.
  std::string Enabled() {
    std::string all;
    for (const char* control : {"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal", "Text5"})
      if (At(std::string("Calibration.") + control).Enabled) all += std::string(control) + ";";
    return all;
  }
  void Choose(const char* option) { Click(std::string("Calibration.") + option); }
  void Press(std::initializer_list<const char*> buttons) {
    for (const char* button : buttons) Click(std::string("Calibration.") + button);
    fake.Messages.clear();
  }
  // A kit with an ideal through standard.
  void WithThroughKit() {
    session.Kit1.KitHasThru = true;
    for (std::size_t i = 0; i < 101; ++i) {
      session.Kit1.KitThruData[0][i] = 3e6f + 31e6f * static_cast<float>(i);
      session.Kit1.KitThruData[3][i] = session.Kit1.KitThruData[5][i] = 1;
    }
  }
};

inline const char* const kPlainCaptions = "Open;Short;Load;Through;Isolation;";

}  // namespace qk::test
