// SPDX-License-Identifier: MIT
// A form at work with the instrument: while the scope stands none of its controls can be worked,
// the skin shows them off, and what the user did meanwhile is dropped at its end.
#pragma once

#include "core/form.h"
#include "core/host.h"

namespace qk {

class BusyScope {
 public:
  BusyScope(Form& form, Windows& windows) : form_(form), windows_(windows) {
    ++form_.busy_;
    form_.Touch();
  }
  ~BusyScope() {
    windows_.DropInput();
    --form_.busy_;
    form_.Touch();
  }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  Form& form_;
  Windows& windows_;
};

}  // namespace qk
