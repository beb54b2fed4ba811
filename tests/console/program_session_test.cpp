// SPDX-License-Identifier: MIT
// The text front panel over the whole program and the simulated instrument, in this process.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "console_fixture.h"
#include "sim/simulated_port.h"
#include "support/recording_canvas.h"
#include "support/scratch_folder.h"

namespace qk::test {
namespace {

struct ConsoleProgram {
  explicit ConsoleProgram(sim::Pace linePace = sim::Pace::Unpaced) : pace(linePace) {
    host.OnTick = [this](TimerId timer) { program.Tick(timer); };
    instrument.Bench("follow off");
  }
  // Runs the lines; gives everything written.
  Texts Run(const Texts& script) {
    for (const std::string& line : script) lines.Add(line);
    FrontPanelReach reach{registry, program.session(), {}, {}, {}, {}, {}, {}, {}, {}, {}};
    reach.SweepsEnded = [this] { return program.controller().SweepsEnded(); };
    reach.PictureSize = [this] { return surface.canvas().Size(); };
    reach.Mouse = [this](Program::MouseAction action, bool left, int x, int y) {
      program.Mouse(action, left, x, y);
    };
    reach.Owner = &program;
    reach.Resize = [this](int width, int height) {
      surface.canvas().Resize({width, height});
      program.PictureResized();
    };
    reach.Bench = [this](std::string_view line, std::string& text) {
      const sim::BenchReply reply = instrument.Bench(line);
      text = reply.Text;
      return reply.Ok;
    };
    const FrontPanel panel(host, reach);
    host.Run([this] { program.StartUp(); });
    return output;
  }
  bool Wrote(const std::string& line) const {
    return std::find(output.begin(), output.end(), line) != output.end();
  }
  std::size_t IndexOf(const std::string& line) const {
    const auto it = std::find(output.begin(), output.end(), line);
    EXPECT_NE(it, output.end()) << "never written: " << line;
    return static_cast<std::size_t>(it - output.begin());
  }

  FakeClock clock;
  TestLines lines{clock};
  Texts output;
  FormRegistry registry;
  ConsoleHost host{registry, lines, [this](const std::string& line) { output.push_back(line); },
                   ConsoleClock{[this] { return clock.NowMs(); },
                                [this](std::int64_t ms) { clock.AdvanceMs(ms); }}};
  sim::Pace pace;
  sim::Instrument instrument;
  sim::SimulatedPort port{
      instrument,
      {[this] { return clock.NowUs(); }, [this](std::int64_t us) { clock.AdvanceUs(us); }},
      pace};
  RecordingSurface surface;
  test::ScratchFolder scratch;
  std::string folder = scratch.Text();
  Program program{registry, host.host(), port, surface, ProgramOptions{folder, 1}};
};

const Texts kCalibrateS11 = {"click Form1.SetCal",
                             "set Calibration.Text1 3",
                             "set Calibration.Text2 3000",
                             "set Calibration.PntsCombo 51",
                             "click Calibration.Command1",
                             "set Calibration.Option3 on",
                             "bench port1 open",
                             "click Calibration.O_Cal",
                             "answer ok",
                             "bench port1 short",
                             "click Calibration.S_Cal",
                             "answer ok",
                             "bench port1 load",
                             "click Calibration.M_Cal",
                             "answer ok",
                             "click Calibration.App_Cal",
                             "click Calibration.Cls_Cal"};

Texts And(Texts first, const Texts& then) {
  first.insert(first.end(), then.begin(), then.end());
  return first;
}

TEST(ConsoleProgram, StartUpReportsItsWindowsAndPanels) {
  ConsoleProgram vna;
  vna.Run({"windows"});
  EXPECT_LT(vna.IndexOf("! show Form1"), vna.IndexOf("! show EEPROMdata"));
  EXPECT_LT(vna.IndexOf("! show EEPROMdata"), vna.IndexOf("! hide EEPROMdata"));
  EXPECT_LT(vna.IndexOf("! hide EEPROMdata"), vna.IndexOf("! panel 1 SN. 147"));
  EXPECT_TRUE(vna.Wrote("! panel 2  1, 115.2 Kb/s"));
  EXPECT_EQ(vna.output.back(), "! exit 0");
}

TEST(ConsoleProgram, TheSessionOfTheManualRuns) {
  ConsoleProgram vna;
  vna.Run({"wait ms 0", "click Form1.SetCal", "set Calibration.Text1 3",
           "set Calibration.Text2 3000", "set Calibration.PntsCombo 401",
           "click Calibration.Command1", "set Calibration.Option3 on", "bench port1 open",
           "click Calibration.O_Cal", "answer ok"});
  EXPECT_LT(vna.IndexOf("ok 1"), vna.IndexOf("! show Calibration"));
  EXPECT_TRUE(vna.Wrote("! panel 7 7.4925 MHz"));
  EXPECT_TRUE(vna.Wrote("! message Open Cal | Open Circuit on Port 1 (0.00mm) | information | ok"));
  EXPECT_LT(vna.IndexOf("ok 10"), vna.IndexOf("ok 9"));
}

TEST(ConsoleProgram, WithoutAnInstrumentTheFirstLinesAnswerTheQuestion) {
  ConsoleProgram vna;
  vna.instrument.Bench("fault unplugged");
  vna.Run({"answer retry", "answer cancel", "panels"});
  EXPECT_EQ(std::count(vna.output.begin(), vna.output.end(),
                       "! message VNA Control | No instrument detected. Check instrument "
                       "connection and power. If using a USB adaptor ensure a valid COM port has "
                       "been assigned (1 to 16) | none | retry/cancel"),
            2);
  EXPECT_TRUE(vna.Wrote("= 2 No Instrument!"));
}

TEST(ConsoleProgram, ASweepIsWatchedAndStoppedFromNestedCommands) {
  ConsoleProgram vna;
  vna.Run(And(kCalibrateS11, {"bench filter", "click Form1.StartMeasurement", "wait sweeps 2",
                              "data corrected S11", "click Form1.StopMeasurement", "panels"}));
  EXPECT_TRUE(vna.Wrote("! panel 3 S11 Cal"));
  // The click on START is command 19: it ends after what was read while it ran.
  EXPECT_LT(vna.IndexOf("! panel 6 SWEEP ON"), vna.IndexOf("ok 20"));
  EXPECT_LT(vna.IndexOf("ok 20"), vna.IndexOf("ok 21"));
  EXPECT_LT(vna.IndexOf("ok 21"), vna.IndexOf("ok 22"));
  EXPECT_EQ(std::count_if(vna.output.begin() + static_cast<std::ptrdiff_t>(vna.IndexOf("ok 20")),
                          vna.output.begin() + static_cast<std::ptrdiff_t>(vna.IndexOf("ok 21")),
                          [](const std::string& line) { return line.rfind("= ", 0) == 0; }),
            51);
  EXPECT_GE(vna.program.controller().SweepsEnded(), 2);
}

TEST(ConsoleProgram, AnUnpluggedCableDuringASweepIsReportedAndTheProgramLivesOn) {
  ConsoleProgram vna;
  vna.Run(And(kCalibrateS11, {"click Form1.StartMeasurement", "wait sweeps 1",
                              "bench fault unplugged", "wait idle", "answer ok", "panels"}));
  // Between two sweeps: what the instrument holds is sent before the next trigger.
  EXPECT_TRUE(vna.Wrote("! message Set Averages | No Response | exclamation | ok"));
  EXPECT_TRUE(vna.Wrote("= 6 Sweep Off"));
}

TEST(ConsoleProgram, QuitDuringASweepLeavesEverythingAsItIs) {
  ConsoleProgram vna;
  vna.Run(And(kCalibrateS11, {"click Form1.StartMeasurement", "wait sweeps 1", "quit"}));
  EXPECT_TRUE(vna.Wrote("ok 20"));
  EXPECT_TRUE(vna.Wrote("error 18: the program ended"));
  EXPECT_EQ(vna.output.back(), "! exit 0");
}

TEST(ConsoleProgram, AScriptThatEndsInARestoreOfTheEepromLetsItComeToItsEnd) {
  ConsoleProgram vna;
  const std::string path = vna.scratch.File("factory.bak");
  vna.Run({"click Form1.SaveEEPROM", "click EepromBk.Command1", "answer yes", "answer " + path,
           "wait ms 100", "bench eeprom 5 77", "bench eeprom 32000 77", "click Form1.RestoreEEPROM",
           "click EepromRest.Command1", "answer yes", "answer " + path, "answer yes"});
  EXPECT_TRUE(vna.Wrote("! hide EepromRest"));
  EXPECT_EQ(vna.output.back(), "! exit 0");
  sim::Instrument factory;
  for (const char* line : {"eeprom 5", "eeprom 32000"})
    EXPECT_EQ(vna.instrument.Bench(line).Text, factory.Bench(line).Text);
}

TEST(ConsoleProgram, ExitAsksAndEndsTheProcess) {
  ConsoleProgram vna;
  vna.Run({"click Form1.Exit", "answer no", "click Form1.Exit", "answer yes", "panels"});
  EXPECT_EQ(std::count(vna.output.begin(), vna.output.end(),
                       "! message VNA Control Exit | Close Program and Exit? | none | yes/no"),
            2);
  EXPECT_TRUE(vna.Wrote("! show ShuttingDown"));
  EXPECT_FALSE(vna.Wrote("ok 5"));
  EXPECT_EQ(vna.output.back(), "! exit 0");
}

TEST(ConsoleProgram, AResizedPictureIsDrawnAnew) {
  ConsoleProgram vna;
  vna.Run({"resize 400 300"});
  EXPECT_LE(vna.program.graphs().Graph(0).Right, 400);
  EXPECT_LE(vna.program.graphs().Graph(0).Bottom, 300);
}

TEST(ConsoleProgram, GraphsAreWorkedByWords) {
  ConsoleProgram vna;
  vna.Run({"graph 1 scale down",
           "graph 1 reference up",
           "graph 1 position 2",
           "graph 1 parameter S22",
           "graph 1 type Group Delay",
           "graph 2 parameter S21",
           "graph 2 type Smith",
           "graph 1 marker 1500",
           "graph 1 menu",
           "graph 1 menu type.SWR",
           "graph 1 menu autoscale",
           "graph 1 menu nothing",
           "graph wheel 400 300 -1",
           "graph wheel 400 300 2 shift",
           "graph double 400 300",
           "graph menu 400 300 peak",
           "graph wheel 4000 300 1",
           "graph 5 autoscale",
           "graph",
           "graph 1 scale",
           "graph all autoscale",
           "graph 1 position 9",
           "quit"});
  const Session& session = vna.program.session();
  EXPECT_EQ(session.Channel(1).Parameter, Parameter::S22);
  EXPECT_EQ(session.Channel(1).GraphType, GraphType::Swr);
  EXPECT_EQ(session.Markers.Set(0).Point, 51);
  EXPECT_TRUE(vna.Wrote("error 7: Smith only available with Reflection Parameter"));
  EXPECT_TRUE(vna.Wrote("= type.Group Delay enabled on Group Delay"));
  EXPECT_TRUE(vna.Wrote("= parameter.S22 enabled on S22"));
  EXPECT_TRUE(vna.Wrote("= type.TD disabled off TD"));
  EXPECT_TRUE(vna.Wrote("error 11: autoscale is disabled")) << "nothing is measured";
  EXPECT_TRUE(vna.Wrote("error 12: no item nothing"));
  EXPECT_TRUE(vna.Wrote("ok 13"));
  EXPECT_DOUBLE_EQ(session.Channel(1).Scale, 1) << "from 0.5, one step coarser";
  EXPECT_DOUBLE_EQ(session.Channel(1).Reference, 3) << "from 1, two divisions up";
  EXPECT_TRUE(vna.Wrote("error 16: peak is disabled"));
  EXPECT_TRUE(vna.Wrote("error 17: outside the picture area of 1000 by 600"));
  for (const char* n : {"18", "19", "20", "22"}) {
    const bool refused = std::any_of(vna.output.begin(), vna.output.end(), [n](const auto& line) {
      return line.rfind(std::string("error ") + n + ": graph CHANNEL", 0) == 0;
    });
    EXPECT_TRUE(refused) << n;
  }
  EXPECT_TRUE(vna.Wrote("ok 21"));
}

// Any lines at all: each command is closed exactly once, and the last line is the exit.
TEST(ConsoleProgram, UndoTakesBackAndSaysWhatItWas) {
  ConsoleProgram vna;
  vna.Run({"graph 1 scale up", "undo", "undo", "undo now", "get Form1.Notice"});
  EXPECT_LT(vna.IndexOf("ok 1"), vna.IndexOf("= undone: scale of CH1"));
  EXPECT_TRUE(vna.Wrote("ok 2"));
  EXPECT_TRUE(vna.Wrote("error 3: Nothing to undo"));
  EXPECT_TRUE(vna.Wrote("error 4: undo takes no arguments"));
  EXPECT_DOUBLE_EQ(vna.program.session().Channel(1).Scale, 10);
}

TEST(ConsoleProgram, AMarkerIsPutOnTheAxisOfItsGraphAndNowhereElse) {
  ConsoleProgram vna;
  Session& session = vna.program.session();
  vna.Run({"graph 1 marker left", "graph 1 marker 1500", "graph 1 marker right",
           "graph 1 marker 2.9", "graph 1 marker -14", "graph 1 marker 3016",
           "graph 1 marker 1500MHz", "graph 1 marker"});
  EXPECT_TRUE(vna.Wrote("error 1: no marker is shown"));
  EXPECT_EQ(session.Markers.Set(0).Point, 51);
  EXPECT_EQ(session.Markers.Of(0, 0).Point, 52);
  EXPECT_EQ(session.Markers.Of(0, 1).Point, 1) << "the nearest one";
  EXPECT_TRUE(vna.Wrote("error 5: -14 MHz is not between 3.0 and 3000.0 MHz"));
  EXPECT_TRUE(vna.Wrote("error 6: 3016 MHz is not between 3.0 and 3000.0 MHz"));
  EXPECT_TRUE(vna.Wrote("error 7: 1500MHz is not a value in MHz"));
}

TEST(ConsoleProgram, AMarkerOnATimeAxisIsPutInNanosecondsOrMetres) {
  for (const TimeAxis axis : {TimeAxis::Time, TimeAxis::Distance}) {
    ConsoleProgram vna;
    Session& session = vna.program.session();
    const bool metres = axis == TimeAxis::Distance;
    vna.Run({"click Form1.SetCal", "set Calibration.PntsCombo 1024 (TD)",
             "click Calibration.Command1", "click Form1.SetDomain",
             std::string("set TDR_Opts.Axis") + (metres ? "Distance on" : "Time on"),
             "click TDR_Opts.Command1", "graph 1 type TD", "graph 1 marker 20",
             "graph 1 marker 0.25", "graph 1 marker 400"});
    EXPECT_TRUE(vna.Wrote("ok 9"));
    const GraphRecord& graph = vna.program.graphs().Graph(0);
    ASSERT_EQ(graph.IsDistance, metres);
    EXPECT_NEAR(PositionOf(graph, session.Markers.Of(0, 0).Point), 20, 0.1);
    EXPECT_NEAR(PositionOf(graph, session.Markers.Of(0, 1).Point), 0.25, 0.1);
    EXPECT_FALSE(session.Markers.Set(2).Shown);
    EXPECT_TRUE(std::any_of(vna.output.begin(), vna.output.end(), [&](const std::string& line) {
      return line.starts_with(metres ? "error 10: 400 m is not between -0."
                                     : "error 10: 400 ns is not between -5.0 and 161.667 ns");
    }));
  }
}

TEST(ConsoleProgram, CancelIsTakenWhileAStandardIsMeasuredAndEveryOtherLineWaits) {
  for (const bool cancels : {true, false}) {
    ConsoleProgram vna(sim::Pace::Baud115200);
    Texts script(kCalibrateS11.begin(), kCalibrateS11.begin() + 9);  // the prompt answered
    if (cancels) script.push_back("click Calibration.CancelStandard");
    script.push_back("get Calibration.Guide");
    script.push_back("click Calibration.CancelStandard");
    vna.Run(script);
    const auto guide = std::find_if(vna.output.begin(), vna.output.end(), [](const auto& line) {
      return line.rfind("= \u2713 Sweep set", 0) == 0;
    });
    ASSERT_NE(guide, vna.output.end());
    EXPECT_EQ(guide->find("\u2713 Open") == std::string::npos, cancels) << *guide;
    if (cancels) {
      EXPECT_LT(vna.IndexOf("ok 10"), vna.IndexOf("ok 8")) << "nested in the click";
    }
    EXPECT_TRUE(vna.Wrote("error " + std::string(cancels ? "12" : "11") +
                          ": Calibration.CancelStandard is disabled"));
  }
}

TEST(ConsoleProgram, NothingIsAskedThatScriptsDoNotExpect) {
  ConsoleProgram vna;
  vna.Run(And(
      Texts(kCalibrateS11.begin(), kCalibrateS11.begin() + 9),
      {"set Calibration.Option4 on", "set Calibration.AskFirst on", "set Calibration.Option3 on"}));
  EXPECT_TRUE(vna.Wrote("ok 10"));
  EXPECT_TRUE(vna.Wrote("ok 12"));
}

TEST(ConsoleProgram, WhateverIsTypedEachCommandIsClosedOnce) {
  const char* words[] = {"click Form1.",     "set Calibration.", "get ",  "answer ok", "answer no",
                         "wait ms 1",        "wait idle",        "data ", "panels",    "mouse ",
                         "resize 100",       "close ",           "Text1", "O_Cal",     "99",
                         "StartMeasurement", "SetCal",           "\t",    "#",         "\\"};
  std::mt19937 random(11);
  for (int round = 0; round < 20; ++round) {
    ConsoleProgram vna;
    Texts script;
    int counted = 0;
    for (int i = 0; i < 60; ++i) {
      std::string line;
      for (unsigned n = random() % 4 + 1; n > 0; --n) line += words[random() % std::size(words)];
      script.push_back(line);
      const std::size_t first = line.find_first_not_of(" \t");
      if (first != std::string::npos && line[first] != '#') ++counted;
    }
    vna.Run(script);
    std::vector<int> closed(static_cast<std::size_t>(counted) + 1);
    for (const std::string& line : vna.output) {
      const bool ok = line.rfind("ok ", 0) == 0;
      if (!ok && line.rfind("error ", 0) != 0) continue;
      ++closed.at(static_cast<std::size_t>(std::stoi(line.substr(ok ? 3 : 6))));
    }
    for (std::size_t n = 1; n < closed.size(); ++n) EXPECT_EQ(closed[n], 1) << "command " << n;
    EXPECT_EQ(vna.output.back(), "! exit 0");
  }
}

}  // namespace
}  // namespace qk::test
