// SPDX-License-Identifier: MIT
// Common base of the two power test windows: the test frequency, the attenuators, a calibration
// with a through, the plot, saving and printing. Each test adds its own fields and calculations.
#pragma once

#include <optional>
#include <string>

#include "control/controller.h"
#include "core/form.h"
#include "display/power_plot.h"
#include "utilities/compression.h"
#include "utilities/receiver_scale.h"

namespace qk {

class PowerTestForm : public Form {
 public:
  void OnOpen() override;
  bool OnCloseBox() override { return !Busy(); }
  // The plot shown in the window.
  const PowerPlot& Plot() const { return plot_; }

 protected:
  // Message titles that differ between the windows.
  struct Words {
    std::string_view Test;          // messages of the test
    std::string_view MaxFrequency;  // "Max Freq" in a calibration
    std::string_view Range;         // a frequency outside the plan, in a calibration
    std::string_view Through;       // the prompt to connect the through
    Complaint CalibrationLink;      // no answer before the levels of a calibration
    Complaint Levels;               // no answer otherwise
  };
  struct ButtonNames {
    std::string Start, Calibrate, Save, Print, Exit;
  };

  PowerTestForm(std::string_view name, std::string caption, Controller& controller,
                const Words& words);
  // Parts of the window, in tab order; the tests insert their own fields between them.
  void AddFrequencyAndPads(const std::string& frame);
  void AddTitle(const std::string& title);
  void AddPlotAndButtons(const ButtonNames& names, PowerPlot empty);

  // The point for Text1, which then shows the grid frequency; empty after a message.
  std::optional<int> ChosenPoint(std::string_view maxTitle, std::string_view rangeTitle);
  // Asks if there is no calibration, or one at another point. True: continue.
  bool MayStartWithoutCal();
  bool MayStartAtPoint(int point);
  // Rounds a field to two decimals and returns its value.
  static double Rounded(const Handle& field);
  // Reads the attenuators' fields, and any other fields that the test rounds.
  virtual void TakePads();
  // Prompt, link check, and all levels; empty after a message.
  std::optional<PowerSweep> MeasureDevice(int point);
  // The power meter data of RXCal.dat for that point; empty after "I/O File Error". The file is
  // used as found. It is Foreign if it is not the table that this start read from the instrument.
  std::optional<PowerMeter> MeterFor(int point, float temperature);
  void ShowPlot(PowerPlot plot);
  // The line below the plot: a table of another instrument, an overload (which makes every number
  // doubtful), or otherwise the text.
  void ShowNote(const PowerSweep& sweep, const PowerMeter& meter, const std::string& text);
  void ClearNote() { note_.Text(""); }
  // Discards the calibration.
  void DropCalibration();
  // Keeps the calibration, but the next start asks whether to continue with it.
  void AskForCalibration();
  PowerTextHead TextHead() const;

  virtual void Measure() = 0;
  virtual void KeepCalibration(const PowerSweep& through) = 0;
  virtual void ForgetCalibration() = 0;
  virtual void ForgetResult() = 0;
  virtual std::string SavedText() const = 0;

  Controller& controller_;
  Rig& rig_;
  Host& host_;
  Session& session_;
  Handle frequency_, inputAttField_, outputAttField_, title_;
  double inputAtt_ = 0, outputAtt_ = 0;  // dB
  bool powerCalDone_ = false;
  std::optional<int> calPoint_;  // point of the last calibration

 private:
  // The conditions of the window's calibration: with another plan, or another calibration of the
  // instrument, it would be wrong.
  struct Basis {
    double StartFreq = 0, StepFreq = 0;
    int NumPoints = 0;
    Complex Isolation, Tracking;
    bool SamePlan(const Basis& b) const {
      return StartFreq == b.StartFreq && StepFreq == b.StepFreq && NumPoints == b.NumPoints;
    }
    bool operator==(const Basis& b) const {
      return SamePlan(b) && Isolation == b.Isolation && Tracking == b.Tracking;
    }
  };
  Basis BasisNow() const;
  void Calibrate();
  void Save();
  void Print();

  Words words_;
  Handle calibrate_, picture_, note_;
  PowerPlot plot_;
  std::string testFrequency_;  // from the last measurement, as shown
  std::optional<Basis> openBasis_;
};

}  // namespace qk
