// SPDX-License-Identifier: MIT
// "Report": the displayed measurement as a document for a customer, with the user's letterhead.
#pragma once

#include "control/report.h"
#include "core/form.h"

namespace qk {

class ReportForm : public Form {
 public:
  explicit ReportForm(Controller& controller);

  void OnOpen() override;

 private:
  void Save();
  void ChooseLogo();
  ReportSettings Settings() const;
  // Saves the letterhead if it has changed; a failure is shown.
  bool KeepSettings();

  Controller& controller_;
  Host& host_;
  ReportSettings kept_;
  Handle serial_, operator_, remark_, title_, address_, logo_;
};

}  // namespace qk
