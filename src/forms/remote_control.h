// SPDX-License-Identifier: MIT
// The window of remote control: switch and port, who is connected, what was exchanged, what went
// wrong.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/form.h"
#include "core/host.h"
#include "core/result.h"

namespace qk {

// What the window shows.
struct RemoteView {
  int Port = 0;                      // on which connections are taken; 0: off
  std::vector<std::string> Clients;  // a line each: address, last command
  std::vector<std::string> Log;      // exchanges, the oldest first
  std::vector<std::string> Errors;   // the oldest first
};

// What the window works; given by the floor above. Empty functions: this program was built or
// started without remote control.
struct RemoteSwitch {
  std::function<RemoteView()> View;
  // 0: any free port. The failure says why the port cannot be used.
  std::function<Result<Done>(int port)> On;
  std::function<void()> Off;
};

class RemoteControl : public Form {
 public:
  explicit RemoteControl(Host& host);

  void Connect(RemoteSwitch to) { switch_ = std::move(to); }
  void OnOpen() override;
  // The server has changed its state or its clients.
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
