// SPDX-License-Identifier: MIT
// "Add Label": edits the label of prints and saved pictures.
#pragma once

#include "control/controller.h"
#include "core/form.h"

namespace qk {

class LabelGraphics : public Form {
 public:
  explicit LabelGraphics(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override;

 private:
  void ShowLabel();
  void Add();

  Session& session_;
  Host& host_;
  Handle text_, date_, status_, show_, preview_;
};

}  // namespace qk
