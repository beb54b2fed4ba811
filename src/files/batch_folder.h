// SPDX-License-Identifier: MIT
// The folder of a batch. It contains everything that is needed to continue the batch:
//
//     batch.txt     the settings: prefix, serial pattern, parameters, sweeps, operator
//     batch.cal     the session: sweep, calibration, channels, limits
//     batch.csv     one row per run, appended and flushed to disk one by one
//     A0001.s2p     the values of a run, and A0001.pdf its report; A0001-2 for its second run
//
// A row is written after its files are on disk. If a killed program leaves files without a row,
// that device is measured again and the files are replaced.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/result.h"
#include "display/remarks.h"

namespace qk {

struct BatchDefinition {
  std::string Prefix;                                      // precedes the serial in file names
  std::string Pattern;                                     // files/serial_pattern.h
  std::array<bool, 4> Parameters{true, true, true, true};  // S11, S21, S12, S22, for the data file
  int Sweeps = 1;  // counted sweeps per device, 1 to 100; one more is made and discarded
  std::string Operator;

  bool operator==(const BatchDefinition&) const = default;
};

std::string BatchPath(const std::string& folder, std::string_view name);  // "batch.txt" ...

// "QK47-20-09 batch 1", then one line each: "prefix X", "pattern A####", "parameters S11 S21",
// "sweeps 3", "operator NAME". The reader rejects anything else and reports the line.
std::string BatchText(const BatchDefinition& definition);
Result<BatchDefinition> ReadBatchText(std::string_view text);

// The definition in a folder; failures name its file.
Result<BatchDefinition> LoadBatch(const std::string& folder);
Result<Done> SaveBatch(const std::string& folder, const BatchDefinition& definition);

struct BatchMargin {
  std::string Parameter, Margin, Unit, Hertz;  // as text; empty for a channel without limits
};

struct BatchRow {
  std::string Utc, Serial;
  int Run = 1;
  Verdict Outcome = Verdict::Error;
  std::string File;  // without extension: "A0001-2"
  std::string Note;  // the reason for ERROR, or the limits that were not tested
  std::array<BatchMargin, 4> Channels;
  std::string Markers, Instrument, Temperature, Calibrated, Operator;
};

// The results of all devices, each by its last run. Devices whose last run ended in ERROR are
// counted separately.
struct BatchYield {
  int Devices = 0, Passed = 0, Failed = 0, Errors = 0;
  int FirstTested = 0, FirstPassed = 0;  // by the first run of each device without ERROR

  // "20 pieces: 17 passed, 3 failed. Yield 85.0 %, first pass 85.0 %."
  std::string Text() const;
};

// batch.csv while a batch is running: read, locked against other programs, appended to.
class BatchLog {
 public:
  // Creates the file if it does not exist. Removes an incomplete last row. Fails if the file has
  // another format (with the line), or if another program uses it.
  static Result<std::unique_ptr<BatchLog>> Open(const std::string& folder);
  ~BatchLog();
  BatchLog(const BatchLog&) = delete;
  BatchLog& operator=(const BatchLog&) = delete;

  // On disk when it returns.
  Result<Done> Append(const BatchRow& row);

  // The data of a run that later runs need.
  struct Entry {
    std::string Serial;
    int Run = 1;
    Verdict Outcome = Verdict::Error;
    std::string File;
    // The reason for ERROR, or one line about the worst channel, with the limits that were not
    // tested.
    std::string Text;
  };
  // Parses the runs from a table of complete rows. Fails with "line N" as the place.
  static Result<std::vector<Entry>> EntriesOf(std::string_view table);
  const std::vector<Entry>& Entries() const { return entries_; }
  // The last run of a serial; nullptr if there is none.
  const Entry* LastOf(std::string_view serial) const;
  // The base name for the files of the next run: prefix and serial, with "-RUN" from the second run
  // on. Skips names that another serial uses, and "batch" in any case, which is reserved for the
  // folder's own files.
  std::string NextFile(const std::string& prefix, const std::string& serial) const;
  BatchYield Yield() const;

 private:
  BatchLog(int fd, std::string path) : fd_(fd), path_(std::move(path)) {}
  Result<Done> Read();
  Result<Done> RemoveTornRow();

  int fd_;
  std::string path_;
  std::vector<Entry> entries_;
};

}  // namespace qk
