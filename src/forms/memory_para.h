// SPDX-License-Identifier: MIT
// "Memory Set Up": stores and erases the channels' traces, chooses the vector math and the hold of
// extremes. What is displayed of it is chosen in the main window.
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

  // Intended: the hold ends when the window is opened.
  void OnOpen() override;
  void OnSessionChanged() override;

 private:
  void StoreData();
  void EraseAll();
  void ChooseFunction();
  void ChooseHold();
  void ChooseMemory(int number);
  void ChooseShown(int number);
  // What each memory holds, beside its tick.
  void ShowMemories();
  // The traces have changed: graphs and windows follow.
  void Replot();

  Controller& controller_;
  Session& session_;
  Host& host_;
  Graphs& graphs_;
  OptionGroup channels_, functions_, holds_;
  std::array<Handle, kMemories> used_, shown_;
};

}  // namespace qk
