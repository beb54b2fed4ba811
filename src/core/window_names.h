// SPDX-License-Identifier: MIT
// The names of the program's windows, for all code that shows, hides or refreshes a window. The
// console accepts the same names from its user.
#pragma once

#include <string_view>

namespace qk::window {

inline constexpr std::string_view kForm1 = "Form1";  // the main window
// Set up.
inline constexpr std::string_view kCalibration = "Calibration";
inline constexpr std::string_view kOpenCal = "OpenCal";
inline constexpr std::string_view kShortCal = "ShortCal";
inline constexpr std::string_view kMatchCal = "MatchCal";
inline constexpr std::string_view kThruCalForm = "ThruCalForm";
inline constexpr std::string_view kIsoMethod = "IsoMethod";
inline constexpr std::string_view kDisplayPara = "DisplayPara";
inline constexpr std::string_view kEnhancePara = "EnhancePara";
inline constexpr std::string_view kMemoryPara = "MemoryPara";
inline constexpr std::string_view kTDR_Opts = "TDR_Opts";
inline constexpr std::string_view kMarkersSet = "MarkersSet";
inline constexpr std::string_view kAdjMarkers = "AdjMarkers";
inline constexpr std::string_view kMarkerTable = "MarkerTable";
inline constexpr std::string_view kNewLimitsSet = "NewLimitsSet";
// Files and tools.
inline constexpr std::string_view kLabelGraphics = "LabelGraphics";
inline constexpr std::string_view kSaveMeas = "SaveMeas";
inline constexpr std::string_view kLoadMeas = "LoadMeas";
inline constexpr std::string_view kReport = "Report";
inline constexpr std::string_view kCompare = "CompareSessions";
inline constexpr std::string_view kCalKitForm = "CalKitForm";
inline constexpr std::string_view kNewCalKit = "NewCalKit";
inline constexpr std::string_view kSaveKit = "SaveKit";
inline constexpr std::string_view kColours = "Colours";
inline constexpr std::string_view kHardwareInfo = "HardwareInfo";
inline constexpr std::string_view kDiagnosticsTests = "DiagnosticsTests";
inline constexpr std::string_view kEepromBk = "EepromBk";
inline constexpr std::string_view kEepromRest = "EepromRest";
inline constexpr std::string_view kRemoteControl = "RemoteControl";
// Utilities.
inline constexpr std::string_view kFreqGen = "FreqGen";
inline constexpr std::string_view kP1dBForm = "P1dBForm";
inline constexpr std::string_view kAMtoPM = "AMtoPM";
inline constexpr std::string_view kCheckCal = "CheckCal";
inline constexpr std::string_view kSweepStats = "SweepStats";
inline constexpr std::string_view kHints = "Hints";
inline constexpr std::string_view kBatch = "Batch";
// Windows that only show information.
inline constexpr std::string_view kEEPROMdata = "EEPROMdata";
inline constexpr std::string_view kUpdating = "Updating";
inline constexpr std::string_view kSweepStopping = "SweepStopping";
inline constexpr std::string_view kShuttingDown = "ShuttingDown";

}  // namespace qk::window
