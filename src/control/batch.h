// SPDX-License-Identifier: MIT
// A batch measures a series of devices one after the other: connect, measure, verdict, files, a row
// of the table. This is the sequence of a batch on top of the verbs, for the window, the console
// and the command line.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "control/controller.h"
#include "control/prompt_gate.h"
#include "control/report.h"
#include "files/batch_folder.h"

namespace qk {

class Batch {
 public:
  // gate: of the controller's prompts. A box that measuring raises is part of the result, because
  // the Enter of the next scan would answer it.
  Batch(Controller& controller, PromptGate& gate);
  ~Batch();
  Batch(const Batch&) = delete;
  Batch& operator=(const Batch&) = delete;

  // Starts a batch in a folder, or continues the one that is there. A relative folder is below the
  // install folder. Creates the folder and stores the definition and the session in it.
  // withItsSession: loads the session stored in the folder first (same messages as Load Cal);
  // otherwise the current session replaces it. Fails without a calibration, if no displayed channel
  // has a limit, for parameters that are not measured, if the reports cannot show their logo,
  // during a sweep, and if another program uses the folder.
  Result<Done> Start(const std::string& folder, const BatchDefinition& definition,
                     bool withItsSession);
  bool Running() const { return log_ != nullptr; }
  // Releases the folder. A device that is being measured is abandoned and gets no row.
  void End();

  // True if the folder contains a batch that can be continued.
  bool IsIn(const std::string& folder) const;
  // The full path that Start would use for this folder.
  std::string PlaceOf(const std::string& folder) const;

  struct Device {
    std::string Serial;
    int Run = 1;
    Verdict Outcome = Verdict::Error;
    // "CH1 S21 passes by 0.35 dB at 843.0000 MHz" and what was not tested, or the reason for ERROR.
    std::string Text;
  };
  // The last result for this serial; nullptr if it was not measured before.
  const BatchLog::Entry* Known(const std::string& serial) const;
  // Measures a device: one discarded sweep, then the sweeps of the definition, up to the first that
  // fails; then writes its files, then its row. If the session was changed (limits, calibration,
  // display), saves it in the folder first. again: measure a known serial once more. Returns when
  // everything is done. Blanks around the serial are ignored. Fails, without a row, if the serial
  // is invalid or already known, if it is to be measured again and is not known, during another
  // device, if START is not possible now, if STOP was pressed, or if a file cannot be written.
  Result<Device> Measure(const std::string& typed, bool again);
  bool Measuring() const { return measuring_; }
  // Called with the number of sweeps done for this device, including the discarded one, and the
  // total.
  std::function<void(int done, int of)> OnSweep;
  // A notice, "TITLE: TEXT", that is not the result of a device, or came while none was being
  // measured; returns true if it is shown to the user, who otherwise gets a box. May be empty.
  std::function<bool(const std::string& notice)> OnNotice;

  const std::string& Folder() const { return folder_; }
  const BatchDefinition& Definition() const { return definition_; }
  BatchYield Yield() const { return log_ ? log_->Yield() : BatchYield(); }
  // The next serial of the pattern; empty if there is none.
  std::optional<std::string> Next() const;
  std::string LastSerial() const;
  // The runs so far, in order; empty if no batch is running.
  const std::vector<BatchLog::Entry>& Entries() const;

 private:
  struct Run;
  Result<Done> KeepSession();
  bool TakeSweep(Run& run, bool complete);
  Result<Device> Record(const std::string& serial, const Run& run);

  Controller& controller_;
  PromptGate& gate_;
  std::string folder_;
  BatchDefinition definition_;
  std::string kept_;     // settings in batch.cal and in the record next to it
  std::string current_;  // the serial of the device that is being measured
  std::unique_ptr<BatchLog> log_;
  bool measuring_ = false;
};

}  // namespace qk
