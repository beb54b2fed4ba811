// SPDX-License-Identifier: MIT
// A report of what is on display: verdict, graphs, limits, markers, set-up and calibration, as a
// document that PictureSurface::WriteReport paints.
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

// What a report is about, beside the session. Empty texts are left out.
struct ReportSubject {
  std::string Serial, Operator, Remark;
  // Of a batch; without it the limits decide, and without limits there is no verdict.
  std::optional<Verdict> Outcome;
  std::string Note;  // why ERROR
  int Run = 1;
  bool Measured = true;  // false: graphs, limits and markers are left out
  std::string DataName, DataBytes;
};

// The margins of the displayed channels under the calibration in force; none without one.
std::vector<LimitMargin> MarginsNow(const Session& session);

// A line for each shown marker of the displayed channels: channel, marker, position, value.
std::vector<std::vector<std::string>> MarkerLines(Controller& controller);

ReportDocument MakeReport(Controller& controller, const ReportSettings& settings,
                          const ReportSubject& subject);

// The values for the data file beside a report: one port as ".s1p", both as ".s2p", other choices
// as ".csv". Fails like AreMeasured.
struct DataFile {
  std::string Ending;  // with its point
  std::string Bytes;
};
Result<DataFile> MakeDataFile(Controller& controller, const std::array<bool, 4>& parameters,
                              const std::string& comment);

// What the calibration in force measures, as the choice of a data file.
std::array<bool, 4> MeasuredParameters(const Session& session);

// The report as a PDF file, and its data file beside it under the same name. The data file is
// written first; a report never stands without it.
Result<Done> SaveReport(Controller& controller, const std::string& path,
                        const ReportSettings& settings, ReportSubject subject);
// The path of the data file that SaveReport would write.
std::string DataPathOf(const Session& session, const std::string& reportPath);

}  // namespace qk
