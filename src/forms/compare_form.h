// SPDX-License-Identifier: MIT
// "Compare Sessions": what differs between two session files, or one and the session in force.
#pragma once

#include "core/form.h"
#include "link/instrument_link.h"

namespace qk {

class CompareForm : public Form {
 public:
  explicit CompareForm(Rig& rig);

  void OnOpen() override;

 private:
  void Choose(const Handle& field);
  void Compare();
  void Save();

  Rig& rig_;
  Handle first_, second_, text_, save_;
};

}  // namespace qk
