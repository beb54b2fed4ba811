// SPDX-License-Identifier: MIT
#include "control/prompt_gate.h"

#include <utility>

namespace qk {

namespace {
constexpr std::string_view kKeepCal = "Keep existing Cal";

Answer OwnAnswer(const Message& message) {
  switch (message.Choice) {
    case Buttons::Ok:
      return Answer::Ok;
    case Buttons::YesNo:
      return message.Text.starts_with(kKeepCal) ? Answer::Yes : Answer::No;
    case Buttons::OkCancel:
    case Buttons::RetryCancel:
      break;
  }
  return Answer::Cancel;
}
}  // namespace

std::string BoxText(const std::string& title, const std::string& text) {
  std::string line = title.empty() ? text : title + ": " + text;
  for (char& c : line)
    if (c == '\n' || c == '\r') c = ' ';
  return line;
}

PromptGate::Unattended::Unattended(PromptGate& gate, Listener listener)
    : gate_(gate), own_(std::move(listener)), before_(gate.listener_) {
  gate_.listener_ = &own_;
}

Answer PromptGate::Ask(const Message& message) {
  if (listener_ != nullptr || NoUser) {
    if (message.AsksToConnect) {
      if (OnConnect) OnConnect(message);
    } else if (listener_ != nullptr && *listener_) {
      (*listener_)(message);
    }
    return OwnAnswer(message);
  }
  const bool notice = message.Choice == Buttons::Ok && !message.AsksToConnect;
  if (notice && attended_ == 0 && HandlesNotice && HandlesNotice(message)) return Answer::Ok;
  const std::string before = std::exchange(waiting_, BoxText(message.Title, message.Text));
  if (OnUserAsked) OnUserAsked(message.Choice != Buttons::Ok);
  const Answer answer = people_.Ask(message);
  waiting_ = before;
  return answer;
}

std::optional<std::string> PromptGate::Choose(const Dialog& dialog) {
  if (listener_ != nullptr || NoUser) return std::nullopt;
  const std::string before = std::exchange(waiting_, BoxText(dialog.Title, "a dialog is open"));
  if (OnUserAsked) OnUserAsked(true);
  std::optional<std::string> chosen = people_.Choose(dialog);
  waiting_ = before;
  return chosen;
}

}  // namespace qk
