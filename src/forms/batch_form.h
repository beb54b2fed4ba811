// SPDX-License-Identifier: MIT
// "Batch": measures a series of devices one after the other, operated with only a keyboard or a
// barcode reader.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

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
  // Asks about a known serial: it is measured again if entered once more.
  void Ask(const std::string& serial, Verdict last);
  // Shows in place of the verdict why nothing was measured.
  void Refuse(const std::string& serial, const std::string& why);
  void NoteEarlyScan();
  void AddReplaced(const std::string& serial, const std::string& by);
  void AddResult(const std::string& line);
  void ShowInstead(std::string word, std::string about, std::uint32_t colour);
  // True for an Enter in the empty field that immediately follows the previous one: a reader that
  // sends two, or a key held down. Each such Enter restarts the delay.
  bool ComesTooSoon();
  void TakeFolder(bool holdsBatch);
  void TakeDefinition(const BatchDefinition& definition);
  BatchDefinition Definition() const;
  // Updates the fields, the buttons, the line with the next step, and the count.
  void ShowState();
  void ShowNext();
  void DrawVerdict(Canvas& canvas) const;

  Controller& controller_;
  Batch& batch_;
  Host& host_;
  std::int64_t shownMs_ = 0;          // time of the last verdict, refusal or early Enter
  std::string shownBatch_;            // the folder whose batch the fields show; empty if none
  std::string early_;                 // the serial entered during a measurement
  std::string asked_;                 // the known serial entered last
  std::vector<std::string> noticed_;  // listed since the last piece
  std::string word_, about_;          // the large verdict
  std::uint32_t colour_ = 0;
  std::string results_;  // the last devices, one line each, newest first

  Handle folder_, prefix_, pattern_, operator_, sweeps_, itsSession_, open_, start_, end_;
  std::array<Handle, 4> parameters_;
  Handle next_, serial_, measure_, again_, verdict_, progress_, yield_, list_;
};

}  // namespace qk
