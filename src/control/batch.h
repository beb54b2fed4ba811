// SPDX-License-Identifier: MIT
// A row of pieces, one after the other: connect, measure, verdict, files, a row of the table. The
// sequence of a batch over the verbs, for the window, the console and the command line.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "control/controller.h"
#include "control/report.h"
#include "files/batch_folder.h"

namespace qk {

class Batch {
 public:
  explicit Batch(Controller& controller) : controller_(controller) {}

  // Begins a batch in a folder (a relative one is of the install folder), or goes on with the one
  // that is there: makes the folder, keeps
  // definition and session in it. withItsSession: the session that the folder keeps is loaded first
  // (messages as of Load Cal); else that in force replaces it. Fails without a calibration, without
  // a limit on any displayed channel, for parameters that are not measured, during a sweep, for a
  // folder that another program works in.
  Result<Done> Start(const std::string& folder, const BatchDefinition& definition,
                     bool withItsSession);
  bool Running() const { return log_ != nullptr; }
  // The folder is let go; a piece that is being measured is given up without a row.
  void End();

  // A folder holds a batch to go on with.
  bool IsIn(const std::string& folder) const;
  // The folder that Start would take.
  std::string PlaceOf(const std::string& folder) const;

  struct Piece {
    std::string Serial;
    int Run = 1;
    Verdict Outcome = Verdict::Error;
    std::string Text;  // "CH1 S21 passes by 0.35 dB at 843.0000 MHz", or why ERROR
  };
  // The last run of a serial, when it was measured before; nullptr when not.
  const BatchLog::Entry* Known(const std::string& serial) const;
  // Measures a piece: a sweep that is discarded and the sweeps of the definition, up to the first
  // that fails; then its files, then its row. A session that was changed (limits, calibration,
  // display) is saved in the folder before. again: a known serial is measured once more. Returns
  // when all that is done. Fails, without a row, for a serial that does not fit or is known, when
  // START is not possible now, when STOP was pressed, when a file cannot be written.
  Result<Piece> Measure(const std::string& serial, bool again);
  bool Measuring() const { return measuring_; }
  // Sweeps done for the piece, the discarded one counted, and how many there are to be.
  std::function<void(int done, int of)> OnSweep;

  const std::string& Folder() const { return folder_; }
  const BatchDefinition& Definition() const { return definition_; }
  BatchYield Yield() const { return log_ ? log_->Yield() : BatchYield(); }
  // The serial that the pattern gives next, or nothing.
  std::optional<std::string> Next() const;
  std::string LastSerial() const;

 private:
  struct Run;
  Result<Done> KeepSession();
  bool TakeSweep(Run& run, bool complete);
  Result<Piece> Record(const std::string& serial, const Run& run);

  Controller& controller_;
  std::string folder_;
  BatchDefinition definition_;
  std::string kept_;  // the session as batch.cal holds it, and the record beside it
  std::unique_ptr<BatchLog> log_;
  bool measuring_ = false;
};

}  // namespace qk
