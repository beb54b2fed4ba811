// SPDX-License-Identifier: MIT
// The complete program without a skin: session, link, graphs, control and all windows.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "control/batch.h"
#include "control/controller.h"
#include "control/prompt_gate.h"
#include "display/graphs.h"
#include "forms/form_registry.h"
#include "forms/graph_menu.h"
#include "forms/live_standard.h"
#include "forms/picture_mouse.h"
#include "link/instrument_link.h"

namespace qk {

class DisplayPara;
class RemoteControl;

struct ProgramOptions {
  std::string InstallFolder;  // created if missing
  float ScreenScale = 1;      // screen height relative to 768 pixels
  std::string Version = {};   // the last line of About; empty: none
  // The initial view of the graphical program: graphs with axis numbers and remarks, and questions
  // before measured data are discarded. Scripts expect neither.
  bool FullView = false;
};

class Program {
 public:
  // Adds all forms to the registry. Host, port, surface and registry must outlive the program.
  Program(FormRegistry& registry, Host host, SerialPort& port, PictureSurface& surface,
          const ProgramOptions& options);
  ~Program();

  void StartUp() { controller_->StartUp(); }
  // Called when a timer of the host ticks.
  void Tick(TimerId timer) { controller_->Tick(timer); }
  // The size of the picture area has changed: recomputes the layout and redraws.
  void PictureResized();
  // A file was dropped on the main window: see OpenFile.
  void Drop(const std::string& path);
  // Mouse on the picture area, in pixels.
  enum class MouseAction { Down, Move, Up };
  void Mouse(MouseAction action, bool leftButton, int x, int y);
  // The wheel over the picture, in steps away from the user; with Shift the reference moves. Over a
  // Smith chart the active marker moves along the trace, with Shift by ten points per step.
  void Wheel(int x, int y, int steps, bool shift);
  // On title, scale or reference of a graph: opens "Display Set Up" at its channel and field.
  // Inside a graph: autoscale. Inside a Smith chart, which has no scale: opens "Display Set Up" at
  // its grid.
  void DoubleClick(int x, int y);
  // The menu of the graph at a position. Empty outside the graphs, and on a marker, where the right
  // button opens "Trace Markers".
  std::vector<MenuEntry> MenuAt(int x, int y);
  // The active channel, or the first displayed one.
  int ChannelOfMenu() const;
  // The menu of the graph of a channel. Markers are placed at the point of the active marker.
  std::vector<MenuEntry> MenuOf(int channel);
  // What can be dragged at a position, and the text of a badge there.
  PictureMouse::Grip GripAt(int x, int y) const { return mouse_->GripAt(x, y); }
  std::optional<std::string> ReadOut(int x, int y);

  Session& session() { return *session_; }
  Controller& controller() { return *controller_; }
  Batch& batch() { return *batch_; }
  Graphs& graphs() { return *graphs_; }
  FormRegistry& registry() { return registry_; }
  Host& host() { return host_; }
  PromptGate& gate() { return gate_; }
  RemoteControl& remoteWindow() { return *remoteWindow_; }

 private:
  // Creates a form and adds it to the registry.
  template <class T, class... Args>
  T& Add(Args&&... args);
  void PlaceForms(const std::string& version);
  GraphMenuActions MenuActions();
  // Makes the actions of the menu undoable.
  std::vector<MenuEntry> Undoable(std::vector<MenuEntry> menu);
  void SetUpDisplay(int channel, std::string_view field);
  void SetUpLimits(int channel);

  FormRegistry& registry_;
  PromptGate gate_;  // in front of the prompts of the host
  Host host_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<InstrumentLink> link_;
  std::unique_ptr<Rig> rig_;
  std::unique_ptr<Graphs> graphs_;
  std::unique_ptr<Controller> controller_;
  std::unique_ptr<Batch> batch_;
  std::unique_ptr<PictureMouse> mouse_;
  std::unique_ptr<LiveStandard> live_;
  std::vector<std::unique_ptr<Form>> forms_;
  RemoteControl* remoteWindow_ = nullptr;
  DisplayPara* display_ = nullptr;
};

}  // namespace qk
