// SPDX-License-Identifier: MIT
// "Save Measurements": saves the S-parameters of the last sweep to a text file, in one of six
// formats.
#pragma once

#include "control/controller.h"
#include "core/form.h"
#include "files/csv.h"
#include "files/measurement_text.h"

namespace qk {

class SaveMeas : public Form {
 public:
  explicit SaveMeas(Controller& controller);

  void OnOpen() override;
  void OnSessionChanged() override { ShowMath(); }

 private:
  void SaveData();
  // Memory math is available only in the display mode "Memory+", a gate only if one is selected.
  void ShowMath();
  void ShowHistory();
  // The column choice is available only for CSV.
  void ShowColumns();
  MeasurementChoice Choice() const;

  Session& session_;
  Host& host_;
  Controller& controller_;
  CommentHistory history_;  // while the window is open

  OptionGroup form_;
  std::array<Handle, 4> parameters_;  // S11, S21, S12, S22
  Handle math_, gate_, comment_;
  std::array<Handle, kCsvColumns.size()> columns_;
};

}  // namespace qk
