// SPDX-License-Identifier: MIT
// A report of the displayed measurement: verdict, graphs, limits, markers, set-up and calibration,
// as a document for PictureSurface::WriteReport.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "control/controller.h"
#include "display/report_document.h"
#include "files/batch_folder.h"
#include "files/report_settings.h"
#include "limits/verdict.h"

namespace qk {

// The subject of a report, in addition to the session. Empty texts are omitted.
struct ReportSubject {
  std::string Serial, Operator, Remark;
  // The verdict of a batch. Without it the limits decide; without limits there is no verdict.
  std::optional<Verdict> Outcome;
  std::string Note;  // the reason for ERROR
  int Run = 1;
  bool Measured = true;  // false: omit graphs, limits and markers
  std::string DataName, DataBytes;
};

// The limit margins of the displayed channels with the active calibration, and what of their limits
// the sweep does not contain; empty without a calibration.
std::vector<LimitMargin> MarginsNow(Controller& controller);

// One line per shown marker of the displayed channels: channel, marker, position, value.
std::vector<std::vector<std::string>> MarkerLines(Controller& controller);

ReportDocument MakeReport(Controller& controller, const ReportSettings& settings,
                          const ReportSubject& subject);

// The values for the data file next to a report: ".s1p" for one port, ".s2p" for both ports, ".csv"
// for any other choice. Fails like AreMeasured.
struct DataFile {
  std::string Ending;  // with its leading dot
  std::string Bytes;
};
Result<DataFile> MakeDataFile(Controller& controller, const std::array<bool, 4>& parameters,
                              const std::string& comment);

// The parameters that the active calibration measures, as the choice for a data file.
std::array<bool, 4> MeasuredParameters(const Session& session);

// Writes a report as a PDF file, and its data file, if there is one (dataPath is not empty), before
// it, so that a report never exists without it. If either cannot be written, both are as before.
Result<Done> WriteReport(Controller& controller, const ReportDocument& report,
                         const std::string& path, const std::string& dataPath,
                         const std::string& dataBytes);

// Writes the report as a PDF file, and its data file next to it with the same base name.
Result<Done> SaveReport(Controller& controller, const std::string& path,
                        const ReportSettings& settings, ReportSubject subject);
// The path of the data file that SaveReport would write.
std::string DataPathOf(const Session& session, const std::string& reportPath);

}  // namespace qk
