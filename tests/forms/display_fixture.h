// SPDX-License-Identifier: MIT
// The program with the window Display Set Up open.
#pragma once

#include <string>

#include "support/program_fixture.h"

namespace qk::test {

struct DisplayFixture : ScriptedProgram {
  DisplayFixture() { OpenDisplay(); }

  void Set(const char* parameter, const char* type, const char* units) {
    Pick("DisplayPara.ListParameters", parameter);
    Pick("DisplayPara.ListGraphType", type);
    Pick("DisplayPara.ListUnits", units);
  }
  Texts Apply() {
    Click("DisplayPara.ApplyDisplay");
    return TakeMessages();
  }
  Texts Refused(const char* text) { return {std::string("|") + text + "|none|ok"}; }
};

}  // namespace qk::test
