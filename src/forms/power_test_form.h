// SPDX-License-Identifier: MIT
// What the windows of the two power tests share: the test frequency, the attenuators, a calibration
// with a through, the plot, saving and printing. Each test adds its fields and its mathematics.
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
  // The plot that the window shows.
  const PowerPlot& Plot() const { return plot_; }

 protected:
  // How the windows' messages differ.
  struct Words {
    std::string_view Test;          // title of the messages of the test
    std::string_view MaxFrequency;  // title of "Max Freq" in a calibration
    std::string_view Range;         // title of a frequency outside the plan there
    std::string_view Through;       // title of the prompt to connect the through
    Complaint CalibrationLink;      // no answer before the levels of a calibration
    Complaint Levels;               // no answer elsewhere
  };
  struct ButtonNames {
    std::string Start, Calibrate, Save, Print, Exit;
  };

  PowerTestForm(std::string_view name, std::string caption, Controller& controller,
                const Words& words);
  // Parts of the window, in the order of the keyboard; the tests put their own fields between.
  void AddFrequencyAndPads(const std::string& frame);
  void AddTitle(const std::string& title);
  void AddPlotAndButtons(const ButtonNames& names, PowerPlot empty);

  // The point of Text1, whose grid frequency then stands in the field; nothing after its message.
  std::optional<int> ChosenPoint(std::string_view maxTitle, std::string_view rangeTitle);
  // Asks when there is no calibration, or one at another point. True: go on.
  bool MayGoWithoutCal();
  bool MayGoAtPoint(int point);
  // Rounds a field to two decimals and gives its value.
  static double Rounded(const Handle& field);
  // The attenuators' fields, and whatever else the test rounds.
  virtual void TakePads();
  // Prompt, link, and all levels; nothing after a message.
  std::optional<PowerSweep> MeasureDevice(int point);
  // RXCal.dat, for that point; nothing after "I/O File Error". The file is used as it is. It is
  // Foreign when it is not the table that this start read from the instrument.
  std::optional<PowerMeter> MeterFor(int point, float temperature);
  void ShowPlot(PowerPlot plot);
  // The line under the plot: a table of another instrument, an overload, which makes every number
  // doubtful, or else the text.
  void ShowNote(const PowerSweep& sweep, const PowerMeter& meter, const std::string& text);
  void ClearNote() { note_.Text(""); }
  // The calibration is gone.
  void DropCalibration();
  // It stands, but the next start asks whether to go on with it.
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
  std::optional<int> calPoint_;  // of the last calibration

 private:
  // What a calibration of the window was made with: with another plan, or another calibration of
  // the instrument, it would be a wrong one.
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
  std::string testFrequency_;  // of the last measurement, as shown
  std::optional<Basis> openBasis_;
};

}  // namespace qk
