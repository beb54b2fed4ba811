// SPDX-License-Identifier: MIT
// A form at work with the instrument: while the scope stands none of its controls can be worked,
// the skin shows them off, and what the user did meanwhile is dropped at its end. Where input is
// kept, a control that works while the form is busy (Handle::WhileBusy) takes it all the time.
#pragma once

#include "core/form.h"
#include "core/host.h"

namespace qk {

class BusyScope {
 public:
  enum class Input { Dropped, Kept };
  BusyScope(Form& form, Windows& windows, Input input = Input::Dropped)
      : form_(form), windows_(windows), input_(input) {
    ++form_.busy_;
    form_.Touch();
  }
  ~BusyScope() {
    if (input_ == Input::Dropped) windows_.DropInput();
    --form_.busy_;
    form_.Touch();
  }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  Form& form_;
  Windows& windows_;
  Input input_;
};

}  // namespace qk
