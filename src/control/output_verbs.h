// SPDX-License-Identifier: MIT
// File output: measured values as Touchstone or CSV, and the picture area. Verbs for windows,
// console and remote control. None of them shows a prompt or a message: a failure is returned, and
// an existing file is then unchanged.
#pragma once

#include <string>
#include <vector>

#include "control/controller.h"
#include "files/csv.h"
#include "files/measurement_text.h"

namespace qk {

// Fails for parameters that the active calibration does not measure: their values are old or 0.
Result<Done> AreMeasured(const Session& session, const std::array<bool, 4>& parameters);

// True if the calibration in force does not measure the parameter of a channel (1 to 4): what it
// shows is of an earlier sweep. Without a calibration the values are those of a loaded session.
bool IsOfEarlierSweep(const Session& session, int channel);

// Fails until a sweep has been made with the current plan: there are no values yet.
Result<Done> HaveValues(const Session& session);

// Touchstone version 1 or plain columns, in the format of Save Measurements, for any parameters,
// measured or not. The comment is written at the start of a Touchstone file.
Result<Done> SaveMeasurement(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment);
// Touchstone version 2 and CSV; measured parameters only.
Result<Done> SaveTouchstone2(Controller& controller, const std::string& path,
                             const MeasurementChoice& choice, const std::string& comment);
Result<Done> SaveCsv(Controller& controller, const std::string& path, const CsvChoice& choice);

// The picture area, with its label if enabled: vector graphics for ".svg" and ".pdf", otherwise an
// image.
Result<Done> SavePicture(Controller& controller, const std::string& path);

}  // namespace qk
