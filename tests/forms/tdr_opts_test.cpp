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
  OptionsFixture bench;
  bench.session.TimeDomain.TdDcTerm = TdDcTerm::Short;
  bench.session.TimeDomain.TdT1 = 10;
  bench.fake.Hide("TDR_Opts");
  bench.PretendSweep();
  bench.Click("Form1.SetDomain");
  EXPECT_TRUE(bench.fake.IsShown("TDR_Opts"));
  EXPECT_EQ(bench.Window("TDR_Opts").Caption(), "Time Domain Options");
  EXPECT_EQ(bench.Value("TDR_Opts.Text1"), "-5.000");
  EXPECT_EQ(bench.Value("TDR_Opts.Text2"), "161.667");
  EXPECT_EQ(bench.Value("TDR_Opts.Text3"), "50.00");
  EXPECT_EQ(bench.Value("TDR_Opts.Text4"), "5");
  EXPECT_EQ(bench.Value("TDR_Opts.Option4"), "on");
  EXPECT_EQ(bench.Value("TDR_Opts.Option6"), "on");
  EXPECT_EQ(bench.td().TdT1, 10);
}

TEST(TdrOpts, NamesItsChoices) {
  OptionsFixture bench;
  const std::pair<const char*, const char*> captions[] = {
      {"Option1", "Rectangular"}, {"Option2", "Hanning"},      {"Option3", "Kaiser Bessel"},
      {"Option6", "Auto"},        {"Option7", "Open circuit"}, {"Option8", "Short circuit"},
      {"Option9", "Resitive"},    {"Option4", "Full"},         {"Option5", "Enter T1, T2"},
      {"Command1", "Apply"}};
  for (const auto& [name, caption] : captions)
    EXPECT_EQ(bench.At("TDR_Opts." + std::string(name)).Caption, caption);
}

TEST(TdrOpts, TypingAnEndOfTheAxisChoosesToEnterIt) {
  OptionsFixture bench;
  bench.Type("TDR_Opts.Text2", "100");
  EXPECT_EQ(bench.Value("TDR_Opts.Option5"), "on");
  EXPECT_EQ(bench.Value("TDR_Opts.Option4"), "off");
}

TEST(TdrOpts, FullTakesTheWholeSpan) {
  OptionsFixture bench;
  bench.Enter("10", "20");
  bench.Press("Option4");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.td().TdT1, -5);
  EXPECT_EQ(bench.td().TdT2, 161.667);
  EXPECT_DOUBLE_EQ(bench.td().TdStep, 166.667 / 1023);
  EXPECT_EQ(bench.Value("TDR_Opts.Text1"), "-5.000");
}

TEST(TdrOpts, TooEarlyAStartBecomesMinusFiveSilently) {
  OptionsFixture bench;
  bench.Enter("-10", "100");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.td().TdT1, -5);
  EXPECT_EQ(bench.td().TdT2, 100);
  EXPECT_DOUBLE_EQ(bench.td().TdStep, 105.0 / 1023);
  EXPECT_EQ(bench.Value("TDR_Opts.Text1"), "-5.000");
  EXPECT_EQ(bench.Value("TDR_Opts.Text2"), "100.000");
}

TEST(TdrOpts, TooLateAnEndBecomesTheLast) {
  OptionsFixture bench;
  bench.Enter("200", "400");
  EXPECT_TRUE(bench.Apply().empty());
  EXPECT_EQ(bench.td().TdT2, 328.333);
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
    OptionsFixture bench;
    bench.Enter(row.T1, row.T2);
    bench.Press("Option8");
    EXPECT_EQ(bench.Apply(), (Texts{row.Message}));
    EXPECT_EQ(bench.td().TdT1, -5);
    EXPECT_EQ(bench.td().TdT2, 161.667);
    EXPECT_EQ(bench.td().TdDcTerm, TdDcTerm::Auto);
    EXPECT_EQ(bench.Value("TDR_Opts.Text2"), row.T2);
  }
}

TEST(TdrOpts, ASpanOf166667IsAccepted) {
  OptionsFixture bench;
  bench.Enter("100", "266.667");
  EXPECT_TRUE(bench.Apply().empty());
}

TEST(TdrOpts, EachTerminationIsTaken) {
  const std::pair<const char*, TdDcTerm> rows[] = {{"Option7", TdDcTerm::Open},
                                                   {"Option8", TdDcTerm::Short},
                                                   {"Option9", TdDcTerm::Res},
                                                   {"Option6", TdDcTerm::Auto}};
  OptionsFixture bench;
  bench.Type("TDR_Opts.Text3", "75.5");
  for (const auto& [option, term] : rows) {
    bench.Press(option);
    bench.Apply();
    EXPECT_EQ(bench.td().TdDcTerm, term);
  }
  EXPECT_EQ(bench.td().TdResistance, 75.5f);
}

TEST(TdrOpts, EachWindowIsTakenAndNamedInTheTitle) {
  const std::pair<const char*, TdWindow> rows[] = {{"Option2", TdWindow::RaisedCos},
                                                   {"Option3", TdWindow::KaiserB},
                                                   {"Option1", TdWindow::Rect}};
  OptionsFixture bench;
  for (const auto& [option, window] : rows) {
    bench.Press(option);
    bench.Apply();
    EXPECT_EQ(bench.td().TdWindow, window);
  }
}

TEST(TdrOpts, TheKaiserOrderIsWholePositiveAndFromOneToTen) {
  const std::pair<const char*, const char*> rows[] = {{"0", "1"},   {"-4", "4"}, {"15", "10"},
                                                      {"3.9", "3"}, {"", "1"},   {"10", "10"}};
  OptionsFixture bench;
  bench.Press("Option3");
  for (const auto& [typed, shown] : rows) {
    bench.Type("TDR_Opts.Text4", typed);
    bench.Apply();
    EXPECT_EQ(bench.Value("TDR_Opts.Text4"), shown) << typed;
    EXPECT_EQ(std::to_string(bench.td().TdKaiserOrder), shown);
  }
}

TEST(TdrOpts, TheOrderIsReadForTheKaiserWindowOnly) {
  OptionsFixture bench;
  bench.Type("TDR_Opts.Text4", "9");
  bench.Apply();
  EXPECT_EQ(bench.td().TdKaiserOrder, 5);
}

TEST(TdrOpts, ApplyComputesTheResponseAnew) {
  OptionsFixture bench;
  bench.session.Plan.NumPoints = 1024;
  bench.session.Channel(1).GraphType = GraphType::Td;
  bench.session.Channel(1).Units = Unit::U;
  bench.session.Data.S11.Fill({1, 0});
  bench.Apply();
  const double full = bench.session.Channel(1).Value[1024];
  EXPECT_NE(full, 0);
  bench.Enter("-5", "0");
  bench.Apply();
  EXPECT_NE(bench.session.Channel(1).Value[1024], full);
}

// Meant: what a session file calls "Short" and "Rect" is compared with "short" and "RectE".
TEST(TdrOpts, AfterASessionFileAShortAndARectangularWindowLeaveTheirButtonsAlone) {
  OptionsFixture bench;
  TimeDomainState& td = bench.session.TimeDomain;
  td.TdDcTerm = TdDcTerm::Open;
  td.TdWindow = TdWindow::KaiserB;
  bench.fake.Refresh("TDR_Opts");
  EXPECT_EQ(bench.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(bench.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Short;
  td.TdWindow = TdWindow::Rect;
  bench.fake.Refresh("TDR_Opts");
  EXPECT_EQ(bench.Value("TDR_Opts.Option7"), "on");
  EXPECT_EQ(bench.Value("TDR_Opts.Option3"), "on");
  td.TdDcTerm = TdDcTerm::Auto;
  td.TdWindow = TdWindow::RaisedCos;
  bench.fake.Refresh("TDR_Opts");
  EXPECT_EQ(bench.Value("TDR_Opts.Option6"), "on");
  EXPECT_EQ(bench.Value("TDR_Opts.Option2"), "on");
}

// No response has two knots at one time; the message stands for the day when one has.
TEST(TdrOpts, AResponseWhoseKnotsMeetWouldBeTold) {
  ScriptedProgram bench;
  bench.program.controller().graphs().SplineDataError();
  EXPECT_EQ(bench.TakeMessages(), (Texts{"TD Computation|Cubic Spline Data Error|none|ok"}));
}

TEST(TdrOpts, ClosesByItsButton) {
  OptionsFixture bench;
  bench.Press("Command2");
  EXPECT_FALSE(bench.fake.IsShown("TDR_Opts"));
}

}  // namespace
}  // namespace qk
