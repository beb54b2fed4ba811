// SPDX-License-Identifier: MIT
#include "forms/remote_control.h"

#include <cmath>
#include <optional>

#include "core/text.h"
#include "core/window_names.h"

namespace qk {

namespace {

constexpr int kUsualPort = 5025;
constexpr const char* kRemoteTitle = "Remote Control";

template <class At>
std::string Lines(At first, At last) {
  std::string text;
  for (At at = first; at != last; ++at) text += (text.empty() ? "" : "\n") + *at;
  return text;
}

std::optional<int> PortIn(const std::string& text) {
  double port = 0;
  if (!ParseNumber(text, port) || port != std::floor(port) || port < 0 || port > 65535)
    return std::nullopt;
  return static_cast<int>(port);
}

}  // namespace

RemoteControl::RemoteControl(Host& host)
    : Form(window::kRemoteControl, kRemoteTitle, {.ClosesOnRestart = false}), host_(host) {
  Section("Connection", {.How = Arrange::Row});
  port_ = AddText("Port", "Port")
              .Key('P')
              .Number()
              .Chars(6)
              .Text(std::to_string(kUsualPort))
              .Tip("TCP port on this computer, 1 to 65535; 0 takes any free one");
  on_ = AddButton("On", "Switch On", [this] { SwitchOn(); })
            .Key('n')
            .Tip("Accept SCPI commands on this port, from this computer only");
  off_ = AddButton("Off", "Switch Off", [this] { SwitchOff(); })
             .Key('f')
             .Tip("Close the port and every connection");
  port_.Returns(on_);
  Section("");
  state_ = AddLabel("State", "State").Text("Off");
  Section("");
  clients_ = AddText("Clients", "Clients")
                 .ReadOnly()
                 .Lines(4)
                 .Chars(70)
                 .Wide()
                 .Tip("Address and last command of each connection, four at most");
  Section("");
  log_ = AddText("Log", "Last 200 exchanges, the newest first")
             .ReadOnly()
             .Lines(12)
             .Chars(70)
             .Wide()
             .Tip("Time, client, message and reply; select and copy");
  Section("");
  errors_ = AddText("Errors", "Last errors")
                .ReadOnly()
                .Lines(4)
                .Chars(70)
                .Wide()
                .Tip("What clients read with SYSTem:ERRor?");
  ActionRow();
  AddButton("Exit", "Exit", [this] { host_.windows.Hide(Name()); }).Key('x');
  Show();
}

void RemoteControl::OnOpen() {
  Show();
}

void RemoteControl::SwitchOn() {
  if (!switch_.On) {
    host_.prompts.ShowMessage(kRemoteTitle, "This run of the program has no remote control",
                              Icon::Exclamation);
    return;
  }
  const std::optional<int> port = PortIn(port_->Text);
  if (!port) {
    host_.prompts.ShowMessage(kRemoteTitle, "Port must be a whole number from 0 to 65535",
                              Icon::Exclamation);
    return;
  }
  if (const Result<Done> on = switch_.On(*port); !on)
    host_.prompts.ShowMessage(kRemoteTitle, on.Why().Text(), Icon::Exclamation);
  Show();
}

void RemoteControl::SwitchOff() {
  if (switch_.Off) switch_.Off();
  Show();
}

void RemoteControl::Show() {
  const RemoteView view = switch_.View ? switch_.View() : RemoteView();
  const bool on = view.Port != 0;
  port_.Enabled(!on);
  on_.Enabled(!on);
  off_.Enabled(on);
  if (on) port_.Text(std::to_string(view.Port));
  std::string state = "Off";
  if (on) {
    state = "On, 127.0.0.1:" + std::to_string(view.Port) + ", ";
    state += view.Clients.empty() ? "no client"
                                  : std::to_string(view.Clients.size()) +
                                        (view.Clients.size() == 1 ? " client" : " clients");
  }
  state_.Text(state);
  clients_.Text(Lines(view.Clients.begin(), view.Clients.end()));
  log_.Text(Lines(view.Log.rbegin(), view.Log.rend()));
  errors_.Text(Lines(view.Errors.rbegin(), view.Errors.rend()));
}

}  // namespace qk
