// SPDX-License-Identifier: MIT
// "Memory Set Up": stores and erases the channels' traces, selects vector math and max/min hold.
// The main window selects what is displayed of it.
#pragma once

#include <array>

#include "control/controller.h"
#include "core/form.h"
#include "core/host.h"
#include "core/session.h"
#include "display/graphs.h"

namespace qk {

class MemoryPara : public Form {
 public:
  explicit MemoryPara(Controller& controller);

  // Intentional: opening the window ends the hold.
  void OnOpen() override;
  void OnSessionChanged() override;

 private:
  void StoreData();
  void EraseAll();
  void ChooseFunction();
  void ChooseHold();
  void ChooseMemory(int number);
  void ChooseShown(int number);
  // Shows the contents of each memory next to its check box.
  void ShowMemories();
  // The traces have changed: updates graphs and windows.
  void Replot();

  Controller& controller_;
  Session& session_;
  Host& host_;
  Graphs& graphs_;
  OptionGroup channels_, functions_, holds_;
  std::array<Handle, kMemories> used_, shown_;
};

}  // namespace qk
