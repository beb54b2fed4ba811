// SPDX-License-Identifier: MIT
// A calibrated measurement on the simulated bench, its batch and its reports.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <variant>

#include "control/batch.h"
#include "control/report.h"
#include "forms/simulated_program.h"
#include "limits/limit_segments.h"

namespace qk::test {

// A calibrated two-port measurement of S21 with limits of -3 to -1 dB.
struct Production : testing::Test, SimulatedProgram {
  std::string batch = folder.File("lot");
  Batch& work = program.batch();

  Production() {
    Calibrate("100", "3000");
    session.Channel(1).Parameter = Parameter::S21;
    LowerLimit("-3");
    session.Markers.Set(0).Shown = true;
    session.Display.MarkersOn = true;
    program.graphs().RedrawAll(false);
    Bench("attenuator 2");
    fake.Messages.clear();
  }
  void Calibrate(const char* start, const char* stop) {
    SetSweep(start, stop, "51");
    Choose("Option5");
    fake.OnModal = [this](Form&) { Click("IsoMethod.Command1"); };
    Press({"O_Cal", "S_Cal", "M_Cal", "Thru_Cal", "Iso_Cal"});
    fake.OnModal = nullptr;
    Click("Calibration.App_Cal");
    instrument.BackToDevice();
  }
  // Limits with -1 dB as the upper and this value as the lower one, shown.
  void LowerLimit(const std::string& lower) {
    session.Limits.Of(1).Segments[0] = {"100", "3000", "-1", lower};
    EXPECT_TRUE(ApplyLimits(session, 1).Ok());
    session.Limits.Enabled = session.Limits.Of(1).Show = true;
    Host host = fake.host();
    ShowLimitsAsSwitched(session, host);
  }
  // Starts a batch; returns the reason if it did not start.
  std::string Begin(BatchDefinition definition = {}) {
    const Result<Done> started = work.Start(batch, definition, false);
    return started ? "" : started.Why().Text();
  }
  // The verdict of a device, or why there is none.
  std::string Verdict(const std::string& serial, bool again = false) {
    const auto piece = work.Measure(serial, again);
    return piece ? std::string(WordOf(piece->Outcome)) : piece.Why().Text();
  }
  std::string Text(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(std::filesystem::path(batch) / name, std::ios::binary).rdbuf();
    return text.str();
  }
  bool Has(const std::string& name) {
    return std::filesystem::exists(std::filesystem::path(batch) / name);
  }
  std::string Note(const std::string& serial) {
    const std::string text = Text("batch.csv");
    const std::size_t at = text.find("," + serial + ",");
    const std::string row = text.substr(at, text.find('\r', at) - at);
    return row;
  }
  // The text of a report, its blocks joined.
  std::string Said(const ReportDocument& report) {
    std::string text = report.Title + "\n" + report.Address + "\n" + report.Footer + "\n";
    for (const ReportBlock& block : report.Blocks) {
      if (const auto* heading = std::get_if<ReportHeading>(&block)) text += heading->Text + "\n";
      if (const auto* words = std::get_if<ReportParagraph>(&block)) text += words->Text + "\n";
      if (const auto* verdict = std::get_if<ReportVerdict>(&block))
        text += verdict->Word + ": " + verdict->Text + "\n";
      if (const auto* data = std::get_if<ReportDataFile>(&block))
        text += data->Name + " " + std::to_string(data->Bytes.size()) + "\n";
      if (const auto* table = std::get_if<ReportTable>(&block))
        for (const auto& row : table->Rows) {
          for (const std::string& cell : row) text += cell + " | ";
          text += "\n";
        }
    }
    return text;
  }
};

struct BatchWindow : Production {
  BatchWindow() {
    EXPECT_TRUE(Click("Form1.Batch"));
    Type("Batch.Folder", batch);
    Type("Batch.Pattern", "A####");
  }
  // Connects another device.
  void Wait() { clock.AdvanceMs(1000); }
  // Types like a barcode reader, including its Enter.
  void Scan(const std::string& serial) {
    Type("Batch.Serial", serial);
    Click("Batch.Measure");
  }
};

}  // namespace qk::test
