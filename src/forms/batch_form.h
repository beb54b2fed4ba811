// SPDX-License-Identifier: MIT
// "Batch": a row of pieces measured one after the other, by a keyboard or a barcode reader alone.
#pragma once

#include <cstdint>
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
  // Why nothing was measured, where the verdict stands.
  void Refuse(const std::string& serial, const std::string& why);
  void NoteEarlyScan();
  void AddResult(const std::string& line);
  void ShowInstead(std::string word, std::string about, std::uint32_t colour);
  // An Enter in the empty field that came with the one before: a reader that sends two, a key that
  // is held down. Each such Enter makes the next one wait as well.
  bool ComesTooSoon();
  void TakeFolder(bool holdsBatch);
  void TakeDefinition(const BatchDefinition& definition);
  BatchDefinition Definition() const;
  // Fields, buttons, the line that says what to do next, the count.
  void ShowState();
  void DrawVerdict(Canvas& canvas) const;

  Controller& controller_;
  Batch& batch_;
  Host& host_;
  std::int64_t shownMs_ = 0;  // when a verdict or a refusal was shown, or an Enter came too soon
  std::string shownBatch_;    // the folder whose batch the fields show; empty: none
  std::string early_;         // the serial entered while a piece was measured
  std::string asked_;         // the known serial that was entered last
  std::string word_, about_;  // of the large verdict
  std::uint32_t colour_ = 0;
  std::string results_;  // the last pieces, a line each, newest first

  Handle folder_, prefix_, pattern_, operator_, sweeps_, itsSession_, open_, start_, end_;
  std::array<Handle, 4> parameters_;
  Handle next_, serial_, measure_, again_, verdict_, progress_, yield_, list_;
};

}  // namespace qk
