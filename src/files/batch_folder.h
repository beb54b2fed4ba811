// SPDX-License-Identifier: MIT
// The folder of a batch, which holds all that is needed to go on with it:
//
//     batch.txt     what was set: prefix, serial pattern, parameters, sweeps, operator
//     batch.cal     the session: sweep, calibration, channels, limits
//     batch.csv     a row a run, appended and brought to the disk one by one
//     A0001.s2p     the values of a run, and A0001.pdf its report; A0001-2 for its second run
//
// A row is written when its files are on the disk. What a killed program leaves without a row is
// measured anew and replaced.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"

namespace qk {

struct BatchDefinition {
  std::string Prefix;                                      // before the serial in file names
  std::string Pattern;                                     // files/serial_pattern.h
  std::array<bool, 4> Parameters{true, true, true, true};  // S11, S21, S12, S22, for the data file
  int Sweeps = 1;  // counted ones a piece, 1 to 100; one more is made and discarded
  std::string Operator;

  bool operator==(const BatchDefinition&) const = default;
};

std::string BatchPath(const std::string& folder, std::string_view name);  // "batch.txt" ...

// "QK47-20-09 batch 1", then a line each: "prefix X", "pattern A####", "parameters S11 S21",
// "sweeps 3", "operator NAME". The reader fails with the line for anything else.
std::string BatchText(const BatchDefinition& definition);
Result<BatchDefinition> ReadBatchText(std::string_view text);

// The definition of a folder, its file named in failures.
Result<BatchDefinition> LoadBatch(const std::string& folder);
Result<Done> SaveBatch(const std::string& folder, const BatchDefinition& definition);

enum class Verdict : std::uint8_t { Pass, Fail, Error };
std::string_view WordOf(Verdict verdict);  // "PASS", "FAIL", "ERROR"

struct BatchMargin {
  std::string Parameter, Margin, Unit, Hertz;  // as texts; empty for a channel without limits
};

struct BatchRow {
  std::string Utc, Serial;
  int Run = 1;
  Verdict Outcome = Verdict::Error;
  std::string File;  // without ending: "A0001-2"
  std::string Note;  // why ERROR
  std::array<BatchMargin, 4> Channels;
  std::string Markers, Instrument, Temperature, Calibrated, Operator;
};

// How the pieces came out, each by its last run; pieces whose last run ended in ERROR count apart.
struct BatchYield {
  int Pieces = 0, Passed = 0, Failed = 0, Errors = 0;
  int FirstTested = 0, FirstPassed = 0;  // by the first run of each that was no ERROR

  // "20 pieces: 17 passed, 3 failed. Yield 85.0 %, first pass 85.0 %."
  std::string Text() const;
};

// batch.csv while a batch is at work: read, held against a second program, appended to.
class BatchLog {
 public:
  // Makes the file where there is none. A last row that was cut short is taken off. Fails when the
  // file is of another form, with the line, or in use by another program.
  static Result<std::unique_ptr<BatchLog>> Open(const std::string& folder);
  ~BatchLog();
  BatchLog(const BatchLog&) = delete;
  BatchLog& operator=(const BatchLog&) = delete;

  // On the disk when it returns.
  Result<Done> Append(const BatchRow& row);

  // A run as far as a later one needs to know it.
  struct Entry {
    std::string Serial;
    int Run = 1;
    Verdict Outcome = Verdict::Error;
    std::string File;
  };
  // The runs of a table's bytes, every row of which is whole. Fails with "line N" as the place.
  static Result<std::vector<Entry>> EntriesOf(std::string_view table);
  const std::vector<Entry>& Entries() const { return entries_; }
  // The last run of a serial; nullptr when it has none.
  const Entry* LastOf(std::string_view serial) const;
  // The name for the next run's files: prefix and serial, with "-RUN" from the second run on; a
  // name that another serial's run has is passed over, and "batch" in any case, which is that of
  // the folder's own files.
  std::string NextFile(const std::string& prefix, const std::string& serial) const;
  BatchYield Yield() const;

 private:
  BatchLog(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
  Result<Done> Read();

  int fd_;
  std::string path_;
  std::vector<Entry> entries_;
};

}  // namespace qk
