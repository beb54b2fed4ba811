// SPDX-License-Identifier: MIT
// The program with the simulated instrument and a transmission calibration. The windows of the
// utilities are modal, so a test passes the actions to be done while the window is open.
#pragma once

#include <functional>
#include <string>

#include "simulated_program.h"

namespace qk::test {

struct UtilityFixture : SimulatedProgram {
  UtilityFixture() {
    SetSweep("100", "3000", "51");
    Choose("Option4");
    Press({"Thru_Cal", "Iso_Cal", "App_Cal"});
    instrument.BackToDevice();
    fake.Messages.clear();
    port.TakeWritten();
  }
  // Opens a window, does the work in it, and closes it.
  void In(std::string_view window, const std::function<void()>& work) {
    fake.OnModal = [&work](Form&) { work(); };
    fake.Show(window);
    if (!Window(window).Style().Modal) work();
    fake.Hide(window);
    fake.OnModal = nullptr;
  }
  // Runs a bench line at the message with that text, for example to pull the cable during a box.
  void When(const std::string& text, const std::string& line) {
    fake.OnAsk = [this, text, line](const Message& message) {
      instrument.FollowPrompt(message.Text);
      if (message.Text == text) Bench(line);
    };
  }
  // The bytes written since the last call, as text with other bytes in hex: "Q", "YI", "\x00".
  std::string Written() {
    std::string text;
    for (const std::uint8_t byte : port.TakeWritten()) text += static_cast<char>(byte);
    return text;
  }
};

}  // namespace qk::test
