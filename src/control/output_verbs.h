// SPDX-License-Identifier: MIT
// What leaves the program as files: measured values as Touchstone or CSV, the picture area. Verbs
// for windows, console and remote control alike. None asks or tells the user anything: a failure is
// given back, and the old file then stands as it was.
#pragma once

#include <string>
#include <vector>

#include "control/controller.h"
#include "files/csv.h"
#include "files/measurement_text.h"

namespace qk {

// Fails for parameters that the calibration in force does not measure: their values are old or 0.
Result<Done> AreMeasured(const Session& session, const std::array<bool, 4>& parameters);

// Fails until a sweep has been made with the plan in force: there are no values yet.
Result<Done> HaveValues(const Session& session);

// Touchstone version 1 or plain columns, as Save Measurements has always written them, whatever is
// measured. The comment stands at the head of a Touchstone file.
Result<Done> SaveMeasurement(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment);
// Version 2, and CSV, of measured parameters only.
Result<Done> SaveTouchstone2(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment);
Result<Done> SaveCsv(Controller& controller, const std::string& path, const CsvChoice& choice);

// The picture area, with its label if that is to be shown: as vectors for ".svg" and ".pdf", else
// as an image.
Result<Done> SavePicture(Controller& controller, const std::string& path);

}  // namespace qk
