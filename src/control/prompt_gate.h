// SPDX-License-Identifier: MIT
// A layer between the program and the user's message boxes. Boxes raised by a remote command or by
// the measurement of a batch are answered here and reported; all others go to the user.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/host.h"

namespace qk {

class PromptGate : public Prompts {
 public:
  using Listener = std::function<void(const Message&)>;

  explicit PromptGate(Prompts& people) : people_(people) {}

  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;

  // While this exists, boxes are answered here: OK, Yes to keeping the calibration, No or Cancel to
  // everything else; dialogs are cancelled. listener is called with each box except requests to
  // connect something.
  class Unattended {
   public:
    Unattended(PromptGate& gate, Listener listener);
    ~Unattended() { gate_.listener_ = before_; }
    Unattended(const Unattended&) = delete;
    Unattended& operator=(const Unattended&) = delete;

   private:
    PromptGate& gate_;
    Listener own_;
    const Listener* before_;
  };
  // While this exists, even inside an Unattended scope, boxes go to the user again, who is
  // operating the program.
  class Attended {
   public:
    explicit Attended(PromptGate& gate) : gate_(gate), before_(gate.listener_) {
      gate_.listener_ = nullptr;
      ++gate_.attended_;
    }
    ~Attended() {
      gate_.listener_ = before_;
      --gate_.attended_;
    }
    Attended(const Attended&) = delete;
    Attended& operator=(const Attended&) = delete;

   private:
    PromptGate& gate_;
    const Listener* before_;
  };

  // "TITLE: TEXT" of the innermost box or dialog waiting for the user; empty if there is none.
  const std::string& Waiting() const { return waiting_; }

  // Called before a box or dialog is shown to the user, with false for a notice, which only has an
  // OK button; may be empty.
  std::function<void(bool question)> OnUserAsked;
  // A notice that no act of the user has caused, such as that of a timer; returns true if it has
  // taken it. May be empty.
  std::function<bool(const Message&)> HandlesNotice;
  // There is no user: every box is always answered here.
  bool NoUser = false;
  // A standard or device must be connected, and there is no prompt (the demonstration's bench
  // connects it); may be empty.
  std::function<void(const Message&)> OnConnect;

 private:
  Prompts& people_;
  const Listener* listener_ = nullptr;
  int attended_ = 0;
  std::string waiting_;
};

// "TITLE: TEXT" on one line.
std::string BoxText(const std::string& title, const std::string& text);

}  // namespace qk
