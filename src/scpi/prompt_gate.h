// SPDX-License-Identifier: MIT
// Stands between the program and its user's message boxes. What a remote command raises is answered
// here and told to the client; what anything else raises goes to the user.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/host.h"

namespace qk::scpi {

class PromptGate : public Prompts {
 public:
  using Told = std::function<void(const Message&)>;

  explicit PromptGate(Prompts& people) : people_(people) {}

  Answer Ask(const Message& message) override;
  std::optional<std::string> Choose(const Dialog& dialog) override;

  // While it stands, boxes are answered here: OK, Yes to keeping the calibration, No or Cancel to
  // everything else; dialogs are cancelled. told is given each box that is more than a request to
  // connect something.
  class Unattended {
   public:
    Unattended(PromptGate& gate, Told told);
    ~Unattended() { gate_.told_ = before_; }
    Unattended(const Unattended&) = delete;
    Unattended& operator=(const Unattended&) = delete;

   private:
    PromptGate& gate_;
    Told own_;
    const Told* before_;
  };
  // While it stands, inside an unattended stretch too, boxes go to the user again: he is at work
  // himself.
  class Attended {
   public:
    explicit Attended(PromptGate& gate) : gate_(gate), before_(gate.told_) {
      gate_.told_ = nullptr;
    }
    ~Attended() { gate_.told_ = before_; }
    Attended(const Attended&) = delete;
    Attended& operator=(const Attended&) = delete;

   private:
    PromptGate& gate_;
    const Told* before_;
  };

  // "TITLE: TEXT" of the innermost box or dialog that waits for the user; empty when none does.
  const std::string& Waiting() const { return waiting_; }

  // Before a box is put up for the user; may be empty.
  std::function<void(const Message&)> OnUserAsked;
  // There is no user: every box is answered here, always.
  bool Deserted = false;
  // A standard or device is to be connected, and nobody is asked (the demonstration's bench
  // connects it); may be empty.
  std::function<void(const Message&)> OnConnect;

 private:
  Prompts& people_;
  const Told* told_ = nullptr;
  std::string waiting_;
};

// "TITLE: TEXT" on one line.
std::string BoxText(const std::string& title, const std::string& text);

}  // namespace qk::scpi
