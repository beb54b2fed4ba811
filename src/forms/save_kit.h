// SPDX-License-Identifier: MIT
// "Save cal kit": selects which of the two kits in use to save to a file.
#pragma once

#include "core/form.h"
#include "files/kit_file.h"
#include "link/instrument_link.h"

namespace qk {

class SaveKitForm : public Form {
 public:
  explicit SaveKitForm(Rig& rig);

  void OnOpen() override { port_.Choose(-1); }

 private:
  void Continue();
  void SaveSessionKit(KitPort port);

  Session& session_;
  Host& host_;
  OptionGroup port_;
};

}  // namespace qk
