// SPDX-License-Identifier: MIT
// "Compare Sessions": the differences between two session files, or between one and the current
// session.
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
