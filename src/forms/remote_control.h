// SPDX-License-Identifier: MIT
// The remote control window: switch and port, connected clients, exchanges and errors.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/form.h"
#include "core/host.h"
#include "core/result.h"

namespace qk {

// The content of the window.
struct RemoteView {
  int Port = 0;                      // port for connections; 0: off
  std::vector<std::string> Clients;  // one line each: address, last command
  std::vector<std::string> Log;      // exchanges, oldest first
  std::vector<std::string> Errors;   // oldest first
};

// The functions that the window controls, provided by the layer above. Empty functions: the program
// was built or started without remote control.
struct RemoteSwitch {
  std::function<RemoteView()> View;
  // 0: any free port. The failure is the reason why the port cannot be used.
  std::function<Result<Done>(int port)> On;
  std::function<void()> Off;
};

class RemoteControl : public Form {
 public:
  explicit RemoteControl(Host& host);

  void Connect(RemoteSwitch to) { switch_ = std::move(to); }
  void OnOpen() override;
  // Called when the server's state or clients have changed.
  void ServerChanged() { Show(); }

 private:
  void SwitchOn();
  void SwitchOff();
  void Show();

  Host& host_;
  RemoteSwitch switch_;
  Handle port_, on_, off_, state_, clients_, log_, errors_;
};

}  // namespace qk
