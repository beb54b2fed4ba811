// SPDX-License-Identifier: MIT
#include "forms/tdr_opts.h"

#include <gtest/gtest.h>

#include "support/program_fixture.h"

namespace qk {
namespace {

using test::ScriptedProgram;
using test::Texts;

struct OptionsFixture : ScriptedProgram {
  OptionsFixture() { Click("Form1.SetDomain"); }
  const TimeDomainState& td() { return session.TimeDomain; }
  void Press(const char* control) { Click("TDR_Opts." + std::string(control)); }
  void Enter(const char* t1, const char* t2) {
    Type("TDR_Opts.Text1", t1);
    Type("TDR_Opts.Text2", t2);
  }
  Texts Apply() {
    Press("Command1");
    return TakeMessages();
  }
};

TEST(TdrOpts, AGateThatIsNotAppliedPends) {
  OptionsFixture vna;
  vna.Type("TDR_Opts.GateStart", "3");
  vna.Press("GateOn");
  EXPECT_TRUE(vna.At("TDR_Opts.GateStart").Pending());
  EXPECT_TRUE(vna.At("TDR_Opts.GateOn").Pending());
  EXPECT_FALSE(vna.At("TDR_Opts.GateStop").Pending());
  EXPECT_EQ(vna.Apply(), Texts{"TD Options|Choose a channel for the gate|exclamation|ok"});
  EXPECT_TRUE(vna.At("TDR_Opts.GateStart").Pending()) << "refused";
  vna.Press("GateOff");
  EXPECT_FALSE(vna.At("TDR_Opts.GateOff").Pending()) << "as in force";
  EXPECT_EQ(vna.Apply(), Texts{});
  EXPECT_FALSE(vna.At("TDR_Opts.GateStart").Pending());
}

TEST(TdrOpts, AxisWindowAndDcTermThatAreNotAppliedPend) {
  OptionsFixture vna;
  const auto pending = [&vna](const char* control) {
    return vna.At("TDR_Opts." + std::string(control)).Pending();
  };
  constexpr const char* kTyped[] = {"Text1", "Text3", "Text4"};
  constexpr const char* kChosen[] = {"Option5", "Option2", "Option9"};
  for (const char* field : kTyped) vna.Type("TDR_Opts." + std::string(field), "7");
  EXPECT_TRUE(pending("Option5")) << "chosen by typing T1";
  for (const char* option : kChosen) vna.Press(option);
  for (const char* control : kTyped) EXPECT_TRUE(pending(control)) << control;
  for (const char* control : kChosen) EXPECT_TRUE(pending(control)) << control;
  EXPECT_FALSE(pending("Text2"));
  vna.Type("TDR_Opts.Text2", "6");
  EXPECT_EQ(vna.Apply().size(), 1u) << "T2 is not after T1";
  EXPECT_TRUE(pending("Text1"));
  vna.Type("TDR_Opts.Text2", "60");
  EXPECT_EQ(vna.Apply(), Texts{});
  for (const char* control : kTyped) EXPECT_FALSE(pending(control)) << control;
  for (const char* control : kChosen) EXPECT_FALSE(pending(control)) << control;
  vna.Press("Option1");
  EXPECT_TRUE(pending("Option1"));
  vna.Press("Option2");
  EXPECT_FALSE(pending("Option2")) << "as applied";
}

TEST(TdrOpts, OpensWithTheDefaultsWhateverIsInForce) {
  OptionsFixture vna;
  vna.session.TimeDomain.TdDcTerm = TdDcTerm::Short;
  vna.session.TimeDomain.TdT1 = 10;
  vna.fake.Hide("TDR_Opts");
  vna.PretendSweep();
  vna.Click("Form1.SetDomain");
  EXPECT_TRUE(vna.fake.IsShown("TDR_Opts"));
  EXPECT_EQ(vna.Window("TDR_Opts").Caption(), "Time Domain Options");
  EXPECT_EQ(vna.Value("TDR_Opts.Text1"), "-5.000");
  EXPECT_EQ(vna.Value("TDR_Opts.Text2"), "161.667");
  EXPECT_EQ(vna.Value("TDR_Opts.Text3"), "50.00");
  EXPECT_EQ(vna.Value("TDR_Opts.Text4"), "5");
  EXPECT_EQ(vna.Value("TDR_Opts.Option4"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option6"), "on");
  EXPECT_EQ(vna.td().TdT1, 10);
}

TEST(TdrOpts, NamesItsChoices) {
  OptionsFixture vna;
  const std::pair<const char*, const char*> captions[] = {
      {"Option1", "Rectangular"}, {"Option2", "Hanning"},      {"Option3", "Kaiser Bessel"},
      {"Option6", "Auto"},        {"Option7", "Open circuit"}, {"Option8", "Short circuit"},
      {"Option9", "Resitive"},    {"Option4", "Full"},         {"Option5", "Enter T1, T2"},
      {"Command1", "Apply"}};
  for (const auto& [name, caption] : captions)
    EXPECT_EQ(vna.At("TDR_Opts." + std::string(name)).Caption, caption);
}

TEST(TdrOpts, TypingAnEndOfTheAxisChoosesToEnterIt) {
  OptionsFixture vna;
  vna.Type("TDR_Opts.Text2", "100");
  EXPECT_EQ(vna.Value("TDR_Opts.Option5"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option4"), "off");
}

TEST(TdrOpts, FullTakesTheWholeSpan) {
  OptionsFixture vna;
  vna.Enter("10", "20");
  vna.Press("Option4");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.td().TdT1, -5);
  EXPECT_EQ(vna.td().TdT2, 161.667);
  EXPECT_DOUBLE_EQ(vna.td().TdStep, 166.667 / 1023);
  EXPECT_EQ(vna.Value("TDR_Opts.Text1"), "-5.000");
}

TEST(TdrOpts, TooEarlyAStartBecomesMinusFiveSilently) {
  OptionsFixture vna;
  vna.Enter("-10", "100");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.td().TdT1, -5);
  EXPECT_EQ(vna.td().TdT2, 100);
  EXPECT_DOUBLE_EQ(vna.td().TdStep, 105.0 / 1023);
  EXPECT_EQ(vna.Value("TDR_Opts.Text1"), "-5.000");
  EXPECT_EQ(vna.Value("TDR_Opts.Text2"), "100.000");
}

TEST(TdrOpts, TooLateAnEndBecomesTheLast) {
  OptionsFixture vna;
  vna.Enter("200", "400");
  EXPECT_TRUE(vna.Apply().empty());
  EXPECT_EQ(vna.td().TdT2, 328.333);
}

TEST(TdrOpts, AnAxisThatCannotBeIsRefusedAndKeepsEverything) {
  struct Row {
    const char* T1;
    const char* T2;
    const char* Message;
  };
  for (const Row& row :
       {Row{"10", "5", "TD Options|T2 must greater than T1|exclamation|ok"},
        Row{"10", "10", "TD Options|T2 must greater than T1|exclamation|ok"},
        Row{"0", "170", "TD Options|Span cannot be > 166.667 ns|exclamation|ok"},
        Row{"0", "328.333", "TD Options|Span cannot be > 166.667 ns|exclamation|ok"}}) {
    OptionsFixture vna;
    vna.Enter(row.T1, row.T2);
    vna.Press("Option8");
    EXPECT_EQ(vna.Apply(), (Texts{row.Message}));
    EXPECT_EQ(vna.td().TdT1, -5);
    EXPECT_EQ(vna.td().TdT2, 161.667);
    EXPECT_EQ(vna.td().TdDcTerm, TdDcTerm::Auto);
    EXPECT_EQ(vna.Value("TDR_Opts.Text2"), row.T2);
  }
}

TEST(TdrOpts, ASpanOf166667IsAccepted) {
  OptionsFixture vna;
  vna.Enter("100", "266.667");
  EXPECT_TRUE(vna.Apply().empty());
}

TEST(TdrOpts, EachTerminationIsTaken) {
  const std::pair<const char*, TdDcTerm> rows[] = {{"Option7", TdDcTerm::Open},
                                                   {"Option8", TdDcTerm::Short},
                                                   {"Option9", TdDcTerm::Res},
                                                   {"Option6", TdDcTerm::Auto}};
  OptionsFixture vna;
  vna.Type("TDR_Opts.Text3", "75.5");
  for (const auto& [option, term] : rows) {
    vna.Press(option);
    vna.Apply();
    EXPECT_EQ(vna.td().TdDcTerm, term);
  }
  EXPECT_EQ(vna.td().TdResistance, 75.5f);
}

TEST(TdrOpts, EachWindowIsTakenAndNamedInTheTitle) {
  const std::pair<const char*, TdWindow> rows[] = {{"Option2", TdWindow::RaisedCos},
                                                   {"Option3", TdWindow::KaiserB},
                                                   {"Option1", TdWindow::Rect}};
  OptionsFixture vna;
  for (const auto& [option, window] : rows) {
    vna.Press(option);
    vna.Apply();
    EXPECT_EQ(vna.td().TdWindow, window);
  }
}

TEST(TdrOpts, TheKaiserOrderIsWholePositiveAndFromOneToTen) {
  const std::pair<const char*, const char*> rows[] = {{"0", "1"},   {"-4", "4"}, {"15", "10"},
                                                      {"3.9", "3"}, {"", "1"},   {"10", "10"}};
  OptionsFixture vna;
  vna.Press("Option3");
  for (const auto& [typed, shown] : rows) {
    vna.Type("TDR_Opts.Text4", typed);
    vna.Apply();
    EXPECT_EQ(vna.Value("TDR_Opts.Text4"), shown) << typed;
    EXPECT_EQ(std::to_string(vna.td().TdKaiserOrder), shown);
  }
}

TEST(TdrOpts, TheOrderIsReadForTheKaiserWindowOnly) {
  OptionsFixture vna;
  vna.Type("TDR_Opts.Text4", "9");
  vna.Apply();
  EXPECT_EQ(vna.td().TdKaiserOrder, 5);
}

TEST(TdrOpts, ApplyComputesTheResponseAnew) {
  OptionsFixture vna;
  vna.session.Plan.NumPoints = 1024;
  vna.session.Channel(1).GraphType = GraphType::Td;
  vna.session.Channel(1).Units = Unit::U;
  vna.session.Data.S11.Fill({1, 0});
  vna.Apply();
  const double full = vna.session.Channel(1).Value[1024];
  EXPECT_NE(full, 0);
  vna.Enter("-5", "0");
  vna.Apply();
  EXPECT_NE(vna.session.Channel(1).Value[1024], full);
}

// Intentional: what a session file calls "Short" and "Rect" is compared with "short" and "RectE".
TEST(TdrOpts, AfterASessionFileAShortAndARectangularWindowLeaveTheirButtonsAlone) {
  OptionsFixture vna;
  TimeDomainState& td = vna.session.TimeDomain;
  td.TdDcTerm = TdDcTerm::Open;
  td.TdWindow = TdWindow::KaiserB;
  vna.fake.SessionLoaded();
  EXPECT_EQ(vna.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Short;
  td.TdWindow = TdWindow::Rect;
  vna.fake.SessionLoaded();
  EXPECT_EQ(vna.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Auto;
  td.TdWindow = TdWindow::RaisedCos;
  vna.fake.SessionLoaded();
  EXPECT_EQ(vna.Value("TDR_Opts.Option6"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option2"), "on");
}

// No response has two knots at one time; the message is kept for a response that has.
TEST(TdrOpts, AResponseWhoseKnotsMeetWouldBeReported) {
  ScriptedProgram vna;
  vna.program.controller().graphs().SplineDataError();
  EXPECT_EQ(vna.TakeMessages(), (Texts{"TD Computation|Cubic Spline Data Error|none|ok"}));
}

TEST(TdrOpts, ClosesByItsButton) {
  OptionsFixture vna;
  vna.Press("Command2");
  EXPECT_FALSE(vna.fake.IsShown("TDR_Opts"));
}

// ---- Distance and gate -------------------------------------------------------------------------

TEST(TdrOpts, ACableBringsItsVelocityFactorAndATypedOneIsOnesOwn) {
  OptionsFixture vna;
  EXPECT_EQ(vna.At("TDR_Opts.Cable").Entries,
            (Texts{"Air", "PE", "PTFE", "Foam PE 0.80", "Foam PE 0.84", "Foam PE 0.88", "Own"}));
  vna.Pick("TDR_Opts.Cable", "PTFE");
  EXPECT_EQ(vna.Value("TDR_Opts.VelocityFactor"), "0.695");
  vna.Press("AxisDistance");
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.td().Axis, TimeAxis::Distance);
  EXPECT_EQ(vna.td().VelocityFactor, 0.695);
  vna.Type("TDR_Opts.VelocityFactor", "0.71");
  EXPECT_EQ(vna.Value("TDR_Opts.Cable"), "Own");
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.td().Cable, Cable::Own);
  EXPECT_EQ(vna.td().VelocityFactor, 0.71);
}

TEST(TdrOpts, AnImpossibleVelocityFactorIsRefusedAndChangesNothing) {
  OptionsFixture vna;
  for (const char* factor : {"0", "-0.5", "1.01", "66", "x"}) {
    vna.Type("TDR_Opts.VelocityFactor", factor);
    EXPECT_EQ(vna.Apply(), (Texts{"TD Options|Velocity factor must be 0.01 to 1|exclamation|ok"}));
    EXPECT_EQ(vna.td().VelocityFactor, 1) << factor;
  }
}

TEST(TdrOpts, TheGateWantsAChannelItsTimesInOrderAnd1024Points) {
  OptionsFixture vna;
  const auto refused = [](const char* text) {
    return Texts{std::string("TD Options|") + text + "|exclamation|ok"};
  };
  vna.Press("GateOn");
  vna.Pick("TDR_Opts.Cable", "PE");
  EXPECT_EQ(vna.Apply(), refused("Choose a channel for the gate"));
  EXPECT_EQ(vna.td().VelocityFactor, 1);  // nothing of a refused window is taken
  vna.Window("TDR_Opts").Tick("GateCH2", true);
  EXPECT_EQ(vna.Apply(), refused("Warning: Gate Only with 1024 Sweep points"));
  vna.session.Plan.NumPoints = 1024;
  vna.Type("TDR_Opts.GateStart", "5");
  EXPECT_EQ(vna.Apply(), refused("Gate stop must be greater than gate start"));
  vna.Type("TDR_Opts.GateStart", "-6");
  EXPECT_EQ(vna.Apply(), refused("Gate must be within -5 and 328.333 ns"));
  for (const char* wrong : {"x", "", "nan", "5x"}) {
    vna.Type("TDR_Opts.GateStart", wrong);
    EXPECT_EQ(vna.Apply(), refused("Gate start and stop must be numbers")) << wrong;
    vna.Type("TDR_Opts.GateStart", "1.5");
    vna.Type("TDR_Opts.GateStop", wrong);
    EXPECT_EQ(vna.Apply(), refused("Gate start and stop must be numbers")) << wrong;
    vna.Type("TDR_Opts.GateStop", "5");
  }
  EXPECT_EQ(vna.Apply(), Texts());
  EXPECT_EQ(vna.td().Gate, GateKind::Gate);
  EXPECT_EQ(vna.td().GateStart, 1.5);
  EXPECT_EQ(vna.td().GateStop, 5);
  EXPECT_TRUE(vna.session.Channel(2).Gated);
  EXPECT_FALSE(vna.session.Channel(1).Gated);
}

TEST(TdrOpts, FindsTheFactorFromAKnownLength) {
  OptionsFixture vna;
  const auto find = [&vna] {
    vna.Press("FindFactor");
    return vna.TakeMessages();
  };
  EXPECT_EQ(find(), (Texts{"TD Options|Enter the known length|exclamation|ok"}));
  vna.Type("TDR_Opts.KnownLength", "3");
  EXPECT_EQ(find(), (Texts{"TD Options|Put the active marker on the end of the cable in a time "
                           "trace first|exclamation|ok"}));
  Session& s = vna.session;
  s.Plan.NumPoints = 1024;
  s.Plan.StepFreq = 3e6;
  s.Channel(1).GraphType = GraphType::Td;
  Marker& marker = s.Markers.Of(0, 0);
  marker.State = MarkerState::Active;
  marker.Point = 216;  // 30.03 ns
  EXPECT_EQ(find(), Texts());
  // 2 x 3 m in 30.06 ns: 0.6657 of the speed of light
  EXPECT_NEAR(std::stod(vna.Value("TDR_Opts.VelocityFactor")), 0.6657, 0.0005);
  EXPECT_EQ(vna.Value("TDR_Opts.Cable"), "Own");
  s.Markers.Of(0, 1).State = MarkerState::Reference;
  s.Markers.Of(0, 1).Point = 124;  // 15 ns
  EXPECT_EQ(find(),
            (Texts{"TD Options|Not a cable: the velocity factor would be 1.337|exclamation|ok"}));
}

}  // namespace
}  // namespace qk
