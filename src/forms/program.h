// SPDX-License-Identifier: MIT
// The whole program without a skin: session, link, graphs, control and every window, put together.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "control/controller.h"
#include "display/graphs.h"
#include "forms/form_registry.h"
#include "link/instrument_link.h"

namespace qk {

class PictureMouse;
class RemoteControl;

struct ProgramOptions {
  std::string InstallFolder;  // made when missing
  float ScreenScale = 1;      // screen height relative to 768 pixels
  std::string Version = {};   // About's last line; empty: none
};

class Program {
 public:
  // Adds all forms to the registry. Host, port, surface and registry must outlive the program.
  Program(FormRegistry& registry, Host host, SerialPort& port, PictureSurface& surface,
          const ProgramOptions& options);
  ~Program();

  void StartUp() { controller_->StartUp(); }
  // A timer of the host ticked.
  void Tick(TimerId timer) { controller_->Tick(timer); }
  // The picture area has another size: lays out and redraws.
  void PictureResized();
  // A file was dragged onto the main window: a Touchstone file for the memory.
  void Drop(const std::string& path);
  // Mouse on the picture area, in pixels.
  enum class MouseAction { Down, Move, Up };
  void Mouse(MouseAction action, bool leftButton, int x, int y);

  Session& session() { return *session_; }
  Controller& controller() { return *controller_; }
  Graphs& graphs() { return *graphs_; }
  FormRegistry& registry() { return registry_; }
  Host& host() { return host_; }
  RemoteControl& remoteWindow() { return *remoteWindow_; }

 private:
  // Makes a form and adds it to the registry.
  template <class T, class... Args>
  T& Add(Args&&... args);
  void PlaceForms(const std::string& version);

  FormRegistry& registry_;
  Host host_;
  std::unique_ptr<Session> session_;
  std::unique_ptr<InstrumentLink> link_;
  std::unique_ptr<Rig> rig_;
  std::unique_ptr<Graphs> graphs_;
  std::unique_ptr<Controller> controller_;
  std::unique_ptr<PictureMouse> mouse_;
  std::vector<std::unique_ptr<Form>> forms_;
  RemoteControl* remoteWindow_ = nullptr;
};

}  // namespace qk
