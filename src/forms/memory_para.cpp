// SPDX-License-Identifier: MIT
#include "forms/memory_para.h"

#include <algorithm>
#include <string>

#include "control/graph_verbs.h"
#include "control/verbs.h"
#include "core/instrument_limits.h"
#include "core/window_names.h"
#include "trace/memory.h"

namespace qk {

namespace {
constexpr int kMemoryGroup = 1;
constexpr int kAllChannels = kChannels;  // the choice after the channels
static_assert(kChannels == 4, "an option for each");

// The memory function for a math button; None has no button.
MemoryFunction FunctionOf(int button) {
  return static_cast<MemoryFunction>(button + static_cast<int>(MemoryFunction::Plus));
}
int ButtonOf(MemoryFunction function) {
  return std::max(0, static_cast<int>(function) - static_cast<int>(MemoryFunction::Plus));
}
}  // namespace

MemoryPara::MemoryPara(Controller& controller)
    : Form(window::kMemoryPara, "Memory Set Up"),
      controller_(controller),
      session_(controller.rig().session),
      host_(controller.rig().host),
      graphs_(controller.graphs()) {
  Section("Store");
  channels_ = AddOptions({{"MCH1Select", "CH1"},
                          {"MCH2Select", "CH2"},
                          {"MCH3Select", "CH3"},
                          {"MCH4Select", "CH4"},
                          {"MAllSelect", "ALL"}});
  channels_.Keys("1234L").Tip("The channels whose traces are stored");
  AddButton("StoreData", "Store Data", [this] { StoreData(); })
      .Key('S')
      .Tip("Stores the present trace of the chosen channels");
  AddButton("Command2", "Erase All", [this] { EraseAll(); })
      .Key('E')
      .SameRow()
      .Tip("Erases all stored traces");
  Section("Memory", {.How = Arrange::Grid, .Columns = 2});
  for (int number = 1; number <= kMemories; ++number) {
    const auto i = static_cast<std::size_t>(number - 1);
    const std::string text = std::to_string(number);
    used_[i] = AddOption("Memory" + text, "Memory " + text, kMemoryGroup, [this, number] {
                 ChooseMemory(number);
               }).Tip("Memory used by Store Data, Memory Math and Hold");
    shown_[i] = AddCheck("ShowMemory" + text, "", [this, number] {
                  ChooseShown(number);
                }).Tip("Drawn in the mode Data and Memory: memory " + text);
  }
  Section("Memory Math");
  functions_ = AddOptions({{"PlusSelect", "Data + Memory"},
                           {"SubtractSelect", "Data - Memory"},
                           {"DivideSelect", "Data / Memory"}},
                          [this] { ChooseFunction(); });
  functions_.Keys("DtM").Tip(
      "Complex arithmetic, shown in the mode Memory Math of the main window");
  Section("Hold");  // below the others, so that the window fits next to the graphs on a laptop
  holds_ = AddOptions({{"Holdoff", "Off"}, {"Holdmax", "Max "}, {"Holdmin", "Min"}},
                      [this] { ChooseHold(); });
  holds_.Keys("fxn").Tip(
      "In the mode Data and Memory, the stored trace keeps the maximum or minimum of all sweeps");
  ActionRow();
  AddButton("Command1", "Close Window", [this] { host_.windows.Hide(Name()); }).Key('C');
  functions_.Choose(0);
  holds_.Choose(0);
  ShowMemories();
}

void MemoryPara::OnOpen() {
  session_.Display.MemoryHold = MemoryHold::Off;
  OnSessionChanged();
}

void MemoryPara::OnSessionChanged() {
  functions_.Choose(ButtonOf(session_.Display.MemoryFunction));
  holds_.Choose(static_cast<int>(session_.Display.MemoryHold));
  ShowMemories();
}

void MemoryPara::ShowMemories() {
  used_[static_cast<std::size_t>(session_.Display.MemoryNumber - 1)].Checked();
  for (int number = 1; number <= kMemories; ++number) {
    std::string held;
    for (int n = 1; n <= kChannels; ++n) {
      const StoredMemory memory = MemoryOf(session_, n, number);
      if (memory.Valid && memory.Of)
        held += (held.empty() ? "CH" : ", CH") + std::to_string(n) + " " +
                std::string(NameOf(*memory.Of));
    }
    const auto i = static_cast<std::size_t>(number - 1);
    shown_[i].Caption("Show " + std::to_string(number) + (held.empty() ? " (empty)" : ": " + held));
    shown_[i].Checked(session_.Display.MemoryShown[i]);
  }
}

void MemoryPara::ChooseMemory(int number) {
  UseMemory(session_, host_.windows, number);
  graphs_.ReplotAll();
}

void MemoryPara::ChooseShown(int number) {
  ShowMemory(session_, host_.windows, number,
             shown_[static_cast<std::size_t>(number - 1)]->Checked);
  graphs_.ReplotAll();
}

void MemoryPara::StoreData() {
  const int choice = channels_.Chosen();
  if (choice < 0) {
    host_.prompts.ShowMessage("", "No Channel Selected.", Icon::Exclamation);
    return;
  }
  const int first = choice == kAllChannels ? 1 : choice + 1;
  const int last = choice == kAllChannels ? kChannels : first;
  StoreMemory(session_, first, last);
  session_.Display.MemoryFunction = FunctionOf(functions_.Chosen());
  Replot();
  ReportStored(controller_, first, last);
}

void MemoryPara::EraseAll() {
  EraseMemory(session_);
  Replot();
}

void MemoryPara::ChooseFunction() {
  session_.Display.MemoryFunction = FunctionOf(functions_.Chosen());
  Replot();
}

void MemoryPara::ChooseHold() {
  session_.Display.MemoryHold = static_cast<MemoryHold>(holds_.Chosen());
}

void MemoryPara::Replot() {
  graphs_.ReplotAll();
  host_.windows.SessionChanged();
}

}  // namespace qk
