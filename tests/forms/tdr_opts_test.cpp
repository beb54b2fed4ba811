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

// Meant: what a session file calls "Short" and "Rect" is compared with "short" and "RectE".
TEST(TdrOpts, AfterASessionFileAShortAndARectangularWindowLeaveTheirButtonsAlone) {
  OptionsFixture vna;
  TimeDomainState& td = vna.session.TimeDomain;
  td.TdDcTerm = TdDcTerm::Open;
  td.TdWindow = TdWindow::KaiserB;
  vna.fake.Refresh("TDR_Opts");
  EXPECT_EQ(vna.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Short;
  td.TdWindow = TdWindow::Rect;
  vna.fake.Refresh("TDR_Opts");
  EXPECT_EQ(vna.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Auto;
  td.TdWindow = TdWindow::RaisedCos;
  vna.fake.Refresh("TDR_Opts");
  EXPECT_EQ(vna.Value("TDR_Opts.Option6"), "on");
  EXPECT_EQ(vna.Value("TDR_Opts.Option2"), "on");
}

// No response has two knots at one time; the message stands for the day when one has.
TEST(TdrOpts, AResponseWhoseKnotsMeetWouldBeTold) {
  ScriptedProgram vna;
  vna.program.controller().graphs().SplineDataError();
  EXPECT_EQ(vna.TakeMessages(), (Texts{"TD Computation|Cubic Spline Data Error|none|ok"}));
}

TEST(TdrOpts, ClosesByItsButton) {
  OptionsFixture vna;
  vna.Press("Command2");
  EXPECT_FALSE(vna.fake.IsShown("TDR_Opts"));
}

}  // namespace
}  // namespace qk
