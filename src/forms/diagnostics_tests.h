// SPDX-License-Identifier: MIT
// "Hardware Diagnostics": the self-test with its five verdicts, and the calibration terms as text.
#pragma once

#include "core/form.h"
#include "link/instrument_link.h"
#include "utilities/diagnostics.h"

namespace qk {

class DiagnosticsTests : public Form {
 public:
  explicit DiagnosticsTests(Rig& rig);

  void OnOpen() override;
  // Also ends a running test.
  bool OnCloseBox() override;
  void OnHidden() override;

 private:
  void StartTests();
  void MayStart(bool may);
  void Show(const DiagnosticVerdicts& verdicts);
  void SaveCalTerms();

  Rig& rig_;
  Handle synthesisers_, testLevels_, receiverLevels_, crosstalk_, dcOffset_;
  Handle start_, calTerms_;
  bool ended_ = false;  // the running test should end
};

}  // namespace qk
