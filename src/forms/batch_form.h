// SPDX-License-Identifier: MIT
// "Batch": a row of pieces measured one after the other, by a keyboard or a barcode reader alone.
#pragma once

#include <string>

#include "control/batch.h"
#include "core/form.h"

namespace qk {

class BatchForm : public Form {
 public:
  BatchForm(Controller& controller, Batch& batch);

  void OnOpen() override;
  void OnSessionChanged() override { ShowState(); }

 private:
  void OpenBatch();
  void Start();
  void End();
  void MeasurePiece();
  void MeasureAgain();
  void Measure(const std::string& serial, bool again);
  // A known serial: measured again when it is entered once more.
  void Ask(const std::string& serial, Verdict last);
  void TakeDefinition(const BatchDefinition& definition);
  BatchDefinition Definition() const;
  // Fields, buttons, the line that says what to do next, the count.
  void ShowState();
  void DrawVerdict(Canvas& canvas) const;

  Controller& controller_;
  Batch& batch_;
  Host& host_;
  std::string asked_;         // the known serial that was entered last
  std::string word_, about_;  // of the large verdict
  std::uint32_t colour_ = 0;
  std::string results_;  // the last pieces, a line each, newest first

  Handle folder_, prefix_, pattern_, operator_, sweeps_, itsSession_, open_, start_, end_;
  std::array<Handle, 4> parameters_;
  Handle next_, serial_, measure_, again_, verdict_, progress_, yield_, list_;
};

}  // namespace qk
