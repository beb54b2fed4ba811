// SPDX-License-Identifier: MIT
// Marks a form as busy with the instrument. While the scope exists, the form's controls are
// disabled and the skin shows them so. Input that arrived meanwhile is discarded when the scope
// ends. With Input::Kept it is not discarded, and a control that works while the form is busy
// (Handle::WhileBusy) accepts it throughout.
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
